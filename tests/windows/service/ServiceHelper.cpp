// The process that tests of the model's end start. It uses the process-wide model, on a registry of its own, and
// returns from its entry:
//   service_helper                 0 when the model is one and the same
//   service_helper drag            moves a slider many times and ends at once
//   service_helper switch          turns the camera switch on and ends at once
#include <windows.h>

#include <string>

#include "service/HomeService.h"
#include "suite/logger/QxLogger.h"

int wmain(int argc, wchar_t** argv) {
    QxLogger::GetInstance()->InitProcessLogger();
    HKEY registry = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\PixoraServiceHelper", 0, nullptr, REG_OPTION_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &registry, nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, registry) != ERROR_SUCCESS) {
        return 2;
    }
    HomeService* const model = HomeService::GetInstance();
    const std::wstring work = argc > 1 ? argv[1] : L"";
    if (work == L"drag") {
        for (int level = 0; level < 300; ++level) {
            model->SetBeautyEye(level);
        }
    }
    if (work == L"switch") {
        model->SetCameraSwitch(1);
    }
    model->SetStatusObserver([](const GlobalUtils::FeatureStatusTuple&) {});
    return model == HomeService::GetInstance() ? 0 : 1;
}
