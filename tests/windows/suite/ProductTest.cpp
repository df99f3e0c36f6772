#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <regex>

#include "suite/common/Utf8.h"
#include "suite/product/MachineType.h"
#include "suite/product/SystemEnvironment.h"
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
