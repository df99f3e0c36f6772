#include "pages/FeatureConfig.h"

#include <stdexcept>

#include "suite/logger/QxLogger.h"
#include "suite/product/MachineType.h"
#include "suite/xml/FileInfo.h"
#include "suite/xml/QxXMLDocument.h"

namespace {

constexpr wchar_t kFunction[] = L"HomePage::GetCameraXmlConfig";

std::wstring Widen(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

}  // namespace

int ReadFeatureConfig(const std::string& key) {
    if (key.empty()) {
        return 0;
    }
    QxXMLDocument document;
    if (document.LoadFile(FileInfo::GetSelfFullFilePath("plugins\\lumi_camera_config.xml")) != 0) {
        LogLine(LogLevel::kError, kFunction, L"load lumi_camera_config Xml fail");
        return 0;
    }
    const QxXmlElement root = document.RootElement();
    if (root.IsElementNull()) {
        LogLine(LogLevel::kError, kFunction, L"lumi_camera_config xml root node is null");
        return 0;
    }
    QxXmlElement setting = root.FirstNode(ProductAdapt::MachineType::GetProductName()).FirstNode(key);
    if (setting.IsElementNull()) {
        setting = root.FirstNode("Default").FirstNode(key);
    }
    if (setting.IsElementNull()) {
        return 0;
    }

    int value = 0;
    try {
        value = std::stoi(setting.FirstAttribute("value").Value());
    } catch (const std::logic_error& error) {
        LogLine(LogLevel::kInfo, kFunction, L"lumi_camera_config get value error: ", Widen(error.what()));
    }
    LogLine(LogLevel::kInfo, kFunction, L"lumi_camera_config node ", Widen(key), L" value is ", value);
    return value;
}
