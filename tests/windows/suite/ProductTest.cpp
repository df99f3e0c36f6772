#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <regex>

#include "suite/common/Utf8.h"
#include "suite/product/MachineType.h"
#include "suite/product/SystemEnvironment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/WineOnly.h"

using ProductAdapt::MachineType;

namespace {

constexpr const wchar_t* kFirmwareKey = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
constexpr const wchar_t* kNameValue = L"SystemProductName";

// Puts the machine's own name back at the end.
class MachineTypeTest : public testing::Test {
  protected:
    void SetUp() override { PIXORA_WINE_ONLY("another name would be the machine's"); }
    MachineTypeTest() {
        DWORD size = sizeof before_;
        hadName_ = RegGetValueW(HKEY_LOCAL_MACHINE, kFirmwareKey, kNameValue, RRF_RT_REG_SZ, nullptr, before_, &size) ==
                   ERROR_SUCCESS;
    }
    ~MachineTypeTest() override {
        if (!harness::MayUseWine()) {
            return;
        }
        if (hadName_) {
            Name(before_);
        } else {
            Unname();
        }
    }
    void Name(const std::wstring& name) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kFirmwareKey, kNameValue, REG_SZ, name.c_str(),
                                  static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }
    void Unname() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kFirmwareKey, kNameValue); }

    wchar_t before_[256] = L"";
    bool hadName_ = false;
};

}  // namespace

TEST_F(MachineTypeTest, IsTheFirmwaresNameAsAnElementName) {
    Name(L"Quillon 15-Pro (Gen.2)/\u65e5 <x>");
    EXPECT_EQ(MachineType::GetProductName(), "Quillon15-ProGen.2x");
    Name(L"20XW");
    EXPECT_EQ(MachineType::GetProductName(), "_20XW");
    Name(L"  ");
    EXPECT_EQ(MachineType::GetProductName(), "");
}

TEST_F(MachineTypeTest, IsEmptyWithoutAName) {
    Unname();
    EXPECT_EQ(MachineType::GetProductName(), "");
    const DWORD number = 5;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kFirmwareKey, kNameValue, REG_DWORD, &number, sizeof number);
    EXPECT_EQ(MachineType::GetProductName(), "");
}

TEST(SystemEnvironmentTest, IsTheUsersDisplayLanguage) {
    const std::string tag = suite::ToUtf8(SystemEnvironment::GetCurrentUserLanguage());
    EXPECT_TRUE(std::regex_match(tag, std::regex("[a-z]{2,3}(-[A-Za-z0-9]{2,8})*"))) << tag;
    // The test programme starts this test once in each language that it names here.
    if (const char* const expected = std::getenv("EXPECTED_LANGUAGE")) {
        EXPECT_EQ(tag, expected);
    }
}

namespace {

// What the system says of the user's languages. Asked for the length of the list, it wants to be given none; what it
// leaves behind when it fails is no language.
struct Session {
    std::wstring languages;  // each with its end
    int answers = 2;         // of the list; then it fails
    std::wstring format;     // empty: none
} g_session;

BOOL WINAPI Languages(DWORD flags, PULONG count, PZZWSTR list, PULONG length) {
    EXPECT_EQ(flags, DWORD{MUI_LANGUAGE_NAME});
    if (g_session.answers-- <= 0 || (!list && *length != 0)) {
        return FALSE;
    }
    const std::wstring all = g_session.languages + L'\0';
    if (list) {
        EXPECT_GE(*length, all.size());
        all.copy(list, all.size());
    }
    *count = g_session.languages.empty() ? 0 : 1;
    *length = g_session.languages.empty() ? 0 : static_cast<ULONG>(all.size());
    return TRUE;
}

int WINAPI Format(LPWSTR name, int room) {
    EXPECT_EQ(room, LOCALE_NAME_MAX_LENGTH);
    const std::wstring written = g_session.format.empty() ? L"?" : g_session.format;
    name[written.copy(name, written.size())] = L'\0';
    return g_session.format.empty() ? 0 : static_cast<int>(written.size() + 1);
}

class LanguageSourceTest : public testing::Test {
  protected:
    static std::wstring LanguageOf(const Session& session) {
        g_session = session;
        return SystemEnvironment::GetCurrentUserLanguage();
    }

  private:
    const HMODULE library_ = GetModuleHandleW(L"QxProduct.dll");
    const harness::ImportHook languages_{library_, "GetUserPreferredUILanguages", &Languages};
    const harness::ImportHook format_{library_, "GetUserDefaultLocaleName", &Format};
};

}  // namespace

TEST_F(LanguageSourceTest, TheFirstDisplayLanguageCounts) {
    EXPECT_EQ(LanguageOf({std::wstring(L"pt-BR\0de-DE\0", 12), 2, L"fr-FR"}), L"pt-BR");
}

TEST_F(LanguageSourceTest, WithoutOneTheRegionalFormatDoes) {
    EXPECT_EQ(LanguageOf({{}, 2, L"fr-FR"}), L"fr-FR") << "an empty list";
    EXPECT_EQ(LanguageOf({std::wstring(L"pt-BR\0", 6), 0, L"fr-FR"}), L"fr-FR") << "no list";
    EXPECT_EQ(LanguageOf({std::wstring(L"pt-BR\0", 6), 1, L"fr-FR"}), L"fr-FR") << "one that goes between two calls";
}

TEST_F(LanguageSourceTest, WithoutEitherItIsEnglish) {
    EXPECT_EQ(LanguageOf({{}, 2, {}}), L"en-US");
}
