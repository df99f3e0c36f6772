#include "tests/windows/support/ProgramTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/UICulture.h"
#include "suite/common/LocalFolder.h"
#include "suite/logger/QxLogger.h"
#include "suite/report/EventDataReport.h"

namespace {

constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\iNotoraAssistant";
constexpr wchar_t kKey[] = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";
constexpr std::int32_t kMark = 0x4B273C;  // the camera switch's message, here with a value that no switch has
constexpr int kMarkValue = 77;

std::wstring RegistryName() {
    return L"SOFTWARE\\PixoraWindowTest-" + std::to_wstring(GetCurrentProcessId());
}

std::string ReadFrom(const std::filesystem::path& path, std::size_t start) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.size() > start ? text.substr(start) : std::string();
}

std::size_t SizeOf(const std::filesystem::path& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<std::size_t>(size);
}

std::filesystem::path LogFile() {
    return QxLogger::GetInstance()->FilePath();
}

std::filesystem::path EventsFile() {
    return suite::LocalDataFolder() + L"\\Velmora\\Quillon\\Report\\events.jsonl";
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

PipeServer& TheService() {
    static PipeServer service;
    return service;
}

// What the program finds when it starts: folders, registry, a service, resources and language.
class Machine : public testing::Environment {
  public:
    void SetUp() override {
        const std::wstring folder =
            suite::LocalDataFolder() + L"\\PixoraTest-" + std::to_wstring(GetCurrentProcessId());
        ASSERT_TRUE(suite::MakeFolders(folder));
        SetEnvironmentVariableW(L"LOCALAPPDATA", folder.c_str());
        ASSERT_TRUE(QxLogger::GetInstance()->InitProcessLogger());

        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, RegistryName().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                  &registry_, nullptr),
                  ERROR_SUCCESS);
        ASSERT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, registry_), ERROR_SUCCESS);
        ASSERT_TRUE(TheService().Start(kPipe)) << "another service runs? error " << GetLastError();

        using DuiLib::CPaintManagerUI;
        CPaintManagerUI::SetInstance(GetModuleHandleW(nullptr));
        // A test with a folder of its own lies in one below that of the resources.
        std::wstring resources = CPaintManagerUI::GetInstancePath() + L"res\\";
        if (GetFileAttributesW(resources.c_str()) == INVALID_FILE_ATTRIBUTES)
            resources = CPaintManagerUI::GetInstancePath() + L"..\\res\\";
        CPaintManagerUI::SetResourcePath(resources);
        DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
        culture.SetValuesFolder(resources + L"values\\");
        ASSERT_TRUE(culture.SelectLanguage(L"en_US", true));
    }

    void TearDown() override {
        TheService().Stop();
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(registry_);
        RegDeleteTreeW(HKEY_CURRENT_USER, RegistryName().c_str());
    }

  private:
    HKEY registry_ = nullptr;
};

[[maybe_unused]] testing::Environment* const g_machine = testing::AddGlobalTestEnvironment(new Machine);

}  // namespace

void ProgramTest::SetUp() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    Write(L"filter_driver_install", 1);
    Write(L"init_algorithm", 1);
    for (const wchar_t* name :
         {L"lumi_camera_switch", L"lumi_camera_background_replacement", L"lumi_camera_eye_correction",
          L"lumi_camera_person_track", L"lumi_camera_beauty_person"})
        Write(name, 0);
    for (const wchar_t* name : {L"lumi_camera_beauty_smooth", L"lumi_camera_beauty_white", L"lumi_camera_beauty_eye",
                                L"lumi_camera_beauty_thin"})
        Write(name, 5);
    HomeServiceTestAccess::Clear();
    Input::Park();
    Input::TakeQuit();
    SentMessages();
    logStart_ = SizeOf(LogFile());
    UsageEvents();
    eventsStart_ = SizeOf(EventsFile());
}

void ProgramTest::TearDown() {
    Input::Pump();
    for (const std::string& line : Log()) {
        if (line.starts_with("[L4]") && std::find(expected_.begin(), expected_.end(), line) == expected_.end())
            ADD_FAILURE() << "unexpected in the log: " << line;
    }
}

void ProgramTest::Write(const wchar_t* name, int value) {
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_DWORD, &value, sizeof(value)), ERROR_SUCCESS);
}

void ProgramTest::Write(const wchar_t* name, const std::wstring& value) {
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_SZ, value.c_str(),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
}

void ProgramTest::Remove(const wchar_t* name) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, name);
}

std::optional<int> ProgramTest::Number(const wchar_t* name) {
    int value = 0;
    DWORD size = sizeof(value);
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size) != ERROR_SUCCESS)
        return std::nullopt;
    return value;
}

std::optional<std::wstring> ProgramTest::Text(const wchar_t* name) {
    wchar_t value[4096] = {};
    DWORD size = sizeof(value);
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_SZ, nullptr, value, &size) != ERROR_SUCCESS)
        return std::nullopt;
    return value;
}

std::vector<std::string> ProgramTest::Log() const {
    std::vector<std::string> lines;
    for (const std::string& line : LinesOf(ReadFrom(LogFile(), logStart_))) {
        // "2026-11-21 10:15:30.123 [L4] [1234] text(function)"
        const std::size_t level = line.find("[L");
        const std::size_t thread = line.find(" [", level);
        const std::size_t text = line.find("] ", thread);
        if (level == std::string::npos || thread == std::string::npos || text == std::string::npos) {
            ADD_FAILURE() << "no line of the log: " << line;
            continue;
        }
        lines.push_back(line.substr(level, thread - level) + " " + line.substr(text + 2));
    }
    return lines;
}

std::vector<std::string> ProgramTest::LogOf(const std::string& function) const {
    std::vector<std::string> lines = Log();
    std::erase_if(lines, [&](const std::string& line) { return !line.ends_with("(" + function + ")"); });
    return lines;
}

PipeServer& ProgramTest::Service() {
    return TheService();
}

std::vector<std::int32_t> ProgramTest::SentMessages() {
    HomeService* const model = HomeService::GetInstance();
    static const bool connected = TheService().WaitFor(ServerEvent::Kind::kHello, Input::kDeadline).has_value();
    EXPECT_TRUE(connected) << "the model does not connect";
    std::vector<std::int32_t> codes;
    model->PostDialogValue(kMarkValue);
    while (const auto event = TheService().WaitFor(ServerEvent::Kind::kMessage, Input::kDeadline)) {
        const auto& frame = event->frame;
        const std::int32_t code = frame.slot[2];
        if (code == kMark && frame.payload.size() > 36 && frame.payload[36] == kMarkValue)
            return codes;
        codes.push_back(code);
    }
    ADD_FAILURE() << "the mark did not come";
    return codes;
}

void ProgramTest::SendFromService(std::int32_t code, std::int32_t subCode) {
    TagIPCMessageItem item;
    item.slot[0] = 0xCE0000;
    item.slot[1] = subCode;
    item.slot[2] = code;
    EXPECT_EQ(TheService().Send(item), 1);
}

std::vector<std::string> ProgramTest::UsageEvents() {
    static int round = 0;
    const std::string mark = "mark " + std::to_string(++round);
    HomeService::ReportUsage("631770000", mark);
    std::vector<std::string> events;
    // Reports of the beauty levels come from threads of their own, perhaps after the mark.
    const bool came = Input::PumpUntil([&] {
        bool marked = false;
        events.clear();
        for (const std::string& line : LinesOf(ReadFrom(EventsFile(), eventsStart_))) {
            const std::size_t start = line.find("\"event\":");
            events.push_back(start == std::string::npos ? line : line.substr(start));
            marked = marked || line.find("\"" + mark + "\"") != std::string::npos;
        }
        return marked;
    });
    EXPECT_TRUE(came) << "the spool does not get its events";
    std::erase_if(events, [](const std::string& event) { return event.find("631770000") != std::string::npos; });
    return events;
}

std::wstring ProgramTest::ProgramFolder() {
    return DuiLib::CPaintManagerUI::GetInstancePath();
}

std::wstring ProgramTest::OwnFolder() {
    return suite::LocalDataFolder() + L"\\";
}
