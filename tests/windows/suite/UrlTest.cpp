#include <gmock/gmock.h>
#include <windows.h>

#include <map>

#include "suite/common/LocalFolder.h"
#include "suite/url/UrlsManager.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"
#include "tests/support/WineOnly.h"
#include "tests/windows/suite/TestFolder.h"

using ntx::util::UrlsManager;

namespace {

// Makes the helper the program for web addresses while the test runs: it writes the address that it gets into a file.
class UrlTest : public testing::Test {
  protected:
    void SetUp() override {
        PIXORA_WINE_ONLY("another program for web links would be the machine's");
        const std::filesystem::path helper =
            std::filesystem::path(suite::ProgramPath()).parent_path() / L"suite_helper.exe";
        for (const wchar_t* scheme : {L"http", L"https"}) {
            wchar_t command[1024] = L"";
            DWORD size = sizeof command;
            EXPECT_EQ(
                RegGetValueW(HKEY_CLASSES_ROOT, Key(scheme).c_str(), nullptr, RRF_RT_REG_SZ, nullptr, command, &size),
                ERROR_SUCCESS);
            before_[scheme] = command;
            SetCommand(scheme, L"\"" + helper.wstring() + L"\" url \"%1\"");
        }
    }
    ~UrlTest() override {
        for (const auto& [scheme, command] : before_) {
            SetCommand(scheme, command);
        }
    }
    static std::wstring Key(const std::wstring& scheme) { return scheme + L"\\shell\\open\\command"; }
    static void SetCommand(const std::wstring& scheme, const std::wstring& command) {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, Key(scheme).c_str(), nullptr, REG_SZ, command.c_str(),
                                  static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }
    std::filesystem::path Received() const { return folder_.Path() / L"url.txt"; }

    std::string WaitForAddress() {
        std::string address;
        harness::WaitUntil([&] { return !(address = ReadBytes(Received())).empty(); });
        return address;
    }

    TestFolder folder_;
    std::map<std::wstring, std::wstring> before_;
};

}  // namespace

TEST_F(UrlTest, TheBrowserGetsExactlyTheAddress) {
    EXPECT_TRUE(UrlsManager::OpenUrl(L"https://www.example.com/a%20b?x=1&y=%22#z"));
    EXPECT_EQ(WaitForAddress(), "https://www.example.com/a%20b?x=1&y=%22#z");
}

TEST_F(UrlTest, HttpIsOpenedToo) {
    EXPECT_TRUE(UrlsManager::OpenUrl(L"HTTP://example.com"));
    EXPECT_EQ(WaitForAddress(), "HTTP://example.com");
}

HINSTANCE g_answer = nullptr;

HINSTANCE WINAPI Answer(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT) {
    return g_answer;
}

// The shell's answers up to 32 are errors.
TEST_F(UrlTest, ABrowserThatDoesNotStartIsTold) {
    const harness::ImportHook hook(GetModuleHandleW(L"QxUrl.dll"), "ShellExecuteW", &Answer);
    for (const INT_PTR code : {0, 2, 32}) {
        g_answer = reinterpret_cast<HINSTANCE>(code);
        EXPECT_FALSE(UrlsManager::OpenUrl(L"https://example.com"));
        EXPECT_THAT(
            harness::TestLog::TakeFailures(),
            testing::ElementsAre("the browser does not start: " + std::to_string(code) + "(UrlsManager::OpenUrl)"));
    }
    g_answer = reinterpret_cast<HINSTANCE>(INT_PTR{33});
    EXPECT_TRUE(UrlsManager::OpenUrl(L"https://example.com"));
}

TEST_F(UrlTest, AnythingElseIsRefused) {
    const std::wstring program = (std::filesystem::path(suite::ProgramPath()).parent_path() / L"suite_helper.exe");
    for (const std::wstring& text :
         {std::wstring(), program, L"file:///" + program, std::wstring(L"ftp://example.com"),
          std::wstring(L"javascript:alert(1)"), std::wstring(L"www.example.com"), std::wstring(L"https://"),
          std::wstring(L"https://a b"), std::wstring(L"https://a\" --flag \""), std::wstring(L"https://a\n"),
          L"https://a/" + std::wstring(3000, L'x')}) {
        EXPECT_FALSE(UrlsManager::OpenUrl(text));
        EXPECT_THAT(harness::TestLog::TakeFailures(), testing::ElementsAre(testing::StartsWith("not a web address: ")));
    }
    EXPECT_FALSE(std::filesystem::exists(Received()));
}
