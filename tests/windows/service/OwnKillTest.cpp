// A program that is ended in the middle of adding leaves the old list or the new one.
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kHelperRoot[] = L"SOFTWARE\\PixoraServiceHelper";
constexpr wchar_t kGroup[] = L"lumi_camera_custom_img_group";

class OwnKillTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        // The helper's registry lies in the user's real one.
        UseRealRegistry();
        RegDeleteTreeW(HKEY_CURRENT_USER, kHelperRoot);
        // One that lasts: the helper's own would take no settings key.
        HKEY key = nullptr;
        ASSERT_EQ(
            RegCreateKeyExW(HKEY_CURRENT_USER, kHelperRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_SUCCESS);
        RegCloseKey(key);
    }
    void TearDown() override {
        helper_.Kill();
        RegDeleteTreeW(HKEY_CURRENT_USER, kHelperRoot);
        OwnBackgroundsTest::TearDown();
    }
    // Ends it some time after its list has changed for the first time, another time each round.
    void RunUntilKilled(const std::wstring& work, int round) {
        const std::wstring before = HelperGroup();
        helper_ = harness::ChildProcess(L"service_helper.exe", work);
        ASSERT_TRUE(helper_.Process());
        ASSERT_TRUE(harness::WaitUntil([&] { return HelperGroup() != before; }));
        const auto moment = std::chrono::steady_clock::now() + std::chrono::milliseconds(3 * round);
        while (std::chrono::steady_clock::now() < moment) {
        }
        helper_.Kill();
    }

    static std::wstring HelperGroup() {
        std::vector<wchar_t> text(64 * 1024);
        DWORD size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const std::wstring key = std::wstring(kHelperRoot) + L"\\" + harness::Protocol::kSettingsKey;
        const LSTATUS status =
            RegGetValueW(HKEY_CURRENT_USER, key.c_str(), kGroup, RRF_RT_REG_SZ, nullptr, text.data(), &size);
        return status == ERROR_SUCCESS ? text.data() : L"";
    }

    harness::ChildProcess helper_;
};

TEST_F(OwnKillTest, TheListIsWholeWheneverTheProgramEnds) {
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        ASSERT_NO_FATAL_FAILURE(
            RunUntilKilled(L"add \"" + Media(round % 3 == 0 ? L"clip.mp4" : L"red.jpg") + L"\"", round));

        const std::wstring group = HelperGroup();
        const Records records = CustomImageGroup::Parse(group);
        EXPECT_EQ(CustomImageGroup::Serialise(records), group) << "a damaged list";
        for (const CustomImageRecord& record : records) {
            EXPECT_GT(Decode(record.thumbPath).width, 0u) << fs::path(record.thumbPath);
        }
    }
}

TEST_F(OwnKillTest, ADeletionThatWasCutOffIsFinishedByTheNextStart) {
    for (int round = 0; round < 10; ++round) {
        SCOPED_TRACE(round);
        // Each helper's start loads what the one before has left.
        ASSERT_NO_FATAL_FAILURE(RunUntilKilled(L"churn \"" + Media(L"red.jpg") + L"\"", round));
        const std::wstring group = HelperGroup();
        const Records records = CustomImageGroup::Parse(group);
        EXPECT_EQ(CustomImageGroup::Serialise(records), group) << "a damaged list";
        int without = 0;
        for (const CustomImageRecord& record : records) {
            const bool there = fs::exists(record.thumbPath);
            without += there ? 0 : 1;
            EXPECT_TRUE(!there || Decode(record.thumbPath).width > 0) << fs::path(record.thumbPath);
        }
        EXPECT_LE(without, 1) << "only the one that was being deleted";
    }
}

}  // namespace
