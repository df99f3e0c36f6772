// A program that is ended in the middle of adding leaves the old list or the new one.
#include <fstream>

#include "suite/common/Handle.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kHelperKey[] = L"SOFTWARE\\PixoraServiceHelper\\SOFTWARE\\Velmora\\Quillon\\LumiCamera";
constexpr wchar_t kGroup[] = L"lumi_camera_custom_img_group";

class OwnKillTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        // The helper's registry lies in the user's real one.
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\PixoraServiceHelper");
    }

    static std::wstring HelperGroup() {
        std::vector<wchar_t> text(64 * 1024);
        DWORD size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS status =
            RegGetValueW(HKEY_CURRENT_USER, kHelperKey, kGroup, RRF_RT_REG_SZ, nullptr, text.data(), &size);
        return status == ERROR_SUCCESS ? text.data() : L"";
    }

    static suite::Handle StartHelper(const std::wstring& file) {
        std::wstring program(MAX_PATH, L'\0');
        program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
        std::wstring command =
            L"\"" + (fs::path(program).parent_path() / L"service_helper.exe").wstring() + L"\" add \"" + file + L"\"";
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION info{};
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
            return {};
        }
        CloseHandle(info.hThread);
        return suite::Handle(info.hProcess);
    }
};

TEST_F(OwnKillTest, TheListIsWholeWheneverTheProgramEnds) {
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        const std::wstring before = HelperGroup();
        const suite::Handle helper = StartHelper(Media(round % 3 == 0 ? L"clip.mp4" : L"red.jpg"));
        ASSERT_TRUE(helper);
        // Somewhere within the next addition, another place each time.
        const auto deadline = std::chrono::steady_clock::now() + kDeadline;
        while (HelperGroup() == before) {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline);
            Sleep(1);
        }
        const auto moment = std::chrono::steady_clock::now() + std::chrono::milliseconds(3 * round);
        while (std::chrono::steady_clock::now() < moment) {
        }
        TerminateProcess(helper.Get(), 1);
        WaitForSingleObject(helper.Get(), INFINITE);

        const std::wstring group = HelperGroup();
        const Records records = CustomImageGroup::Parse(group);
        EXPECT_EQ(CustomImageGroup::Serialise(records), group) << "a damaged list";
        for (const CustomImageRecord& record : records) {
            EXPECT_GT(Decode(record.thumbPath).width, 0u) << fs::path(record.thumbPath);
        }
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\PixoraServiceHelper");
}

}  // namespace
