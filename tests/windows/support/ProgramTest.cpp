#include "tests/windows/support/ProgramTest.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/UICulture.h"
#include "tests/support/Harness.h"
#include "tests/support/PrivateRegistry.h"
#include "tests/support/Protocol.h"

namespace {

namespace Protocol = harness::Protocol;
namespace SettingsKey = harness::SettingsKey;

constexpr int kMarkValue = 77;  // in the camera switch's message, where no switch has that value

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

std::filesystem::path EventsFile() {
    return harness::LocalDataFolder() / L"Velmora\\Quillon\\Report\\events.jsonl";
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

// What the program finds when it starts: registry, a service, resources and language.
class Machine : public testing::Environment {
  public:
    void SetUp() override {
        registry_.emplace();
        ASSERT_TRUE(TheService().Start(Protocol::kPipeName)) << "another service runs? error " << GetLastError();

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
        registry_.reset();
    }

  private:
    std::optional<harness::PrivateRegistry> registry_;
};

[[maybe_unused]] testing::Environment* const g_machine = testing::AddGlobalTestEnvironment(new Machine);

}  // namespace

void ProgramTest::SetUp() {
    SettingsKey::SetInstalled();
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
    harness::TestLog::StartOver();
    UsageEvents();
    eventsStart_ = SizeOf(EventsFile());
}

void ProgramTest::TearDown() {
    Input::Pump();
}

PipeServer& ProgramTest::Service() {
    return TheService();
}

std::vector<std::int32_t> ProgramTest::SentMessages() {
    HomeService* const model = HomeService::GetInstance();
    static const bool connected = TheService().WaitFor(ServerEvent::Kind::kHello, Input::kPatience).has_value();
    EXPECT_TRUE(connected) << "the model does not connect";
    std::vector<std::int32_t> codes;
    model->PostDialogValue(kMarkValue);
    while (const auto event = TheService().WaitFor(ServerEvent::Kind::kMessage, Input::kPatience)) {
        const auto& frame = event->frame;
        const std::int32_t code = frame.slot[2];
        if (code == Protocol::kSwitchStateCode && frame.payload.size() > 36 && frame.payload[36] == kMarkValue)
            return codes;
        codes.push_back(code);
    }
    ADD_FAILURE() << "the mark did not come";
    return codes;
}

void ProgramTest::SendFromService(std::int32_t code, std::int32_t subCode) {
    EXPECT_EQ(TheService().Send(Protocol::FromService(code, subCode)), 1);
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
    return harness::ProgramFolder();
}

std::wstring ProgramTest::OwnFolder() {
    return harness::LocalDataFolder().wstring() + L"\\";
}
