#include "tools/proof/KeptRegistry.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <optional>

#include "suite/common/RegistryKey.h"
#include "tests/support/PrivateRegistry.h"

namespace proof {
namespace {

class KeptRegistryTest : public testing::Test {
  protected:
    static void Set(const wchar_t* key, const wchar_t* name, DWORD value) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_DWORD, &value, sizeof value), ERROR_SUCCESS);
    }
    static std::optional<DWORD> Get(const wchar_t* key, const wchar_t* name) {
        DWORD value = 0, size = sizeof value;
        const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, key, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
        return status == ERROR_SUCCESS ? std::optional(value) : std::nullopt;
    }
    static bool HasKey(const wchar_t* path) {
        suite::RegistryKey key;
        return RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
    }

    const harness::PrivateRegistry private_;
    const KeptRegistry kept_{L"Software\\Kept"};
};

TEST_F(KeptRegistryTest, AKeyIsGivenBackWithAllBelowIt) {
    Set(L"Software\\Ours\\Settings", L"one", 1);
    Set(L"Software\\Ours\\Settings\\Below", L"two", 2);
    const wchar_t text[] = L"a\0b\0";
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Ours\\Settings", L"list", REG_MULTI_SZ, text, sizeof text);
    EXPECT_FALSE(kept_.IsKept());
    ASSERT_TRUE(kept_.Keep({{L"Software\\Ours\\Settings", L""}}));
    EXPECT_TRUE(kept_.IsKept());
    EXPECT_EQ(Get(L"Software\\Ours\\Settings", L"one"), 1U);

    suite::RegistryKey watched;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\Ours\\Settings", 0, KEY_READ, watched.Put());
    Set(L"Software\\Ours\\Settings", L"one", 7);
    Set(L"Software\\Ours\\Settings", L"new", 7);
    Set(L"Software\\Ours\\Settings\\New", L"new", 7);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Ours\\Settings\\Below");
    // Another run, as it were.
    EXPECT_TRUE(KeptRegistry(L"Software\\Kept").GiveBack());
    EXPECT_EQ(Get(L"Software\\Ours\\Settings", L"one"), 1U);
    EXPECT_EQ(Get(L"Software\\Ours\\Settings\\Below", L"two"), 2U);
    EXPECT_EQ(Get(L"Software\\Ours\\Settings", L"new"), std::nullopt);
    EXPECT_FALSE(HasKey(L"Software\\Ours\\Settings\\New"));
    wchar_t list[8] = {};
    DWORD size = sizeof list, type = 0;
    RegGetValueW(HKEY_CURRENT_USER, L"Software\\Ours\\Settings", L"list", RRF_RT_REG_MULTI_SZ, &type, list, &size);
    EXPECT_EQ(type, DWORD{REG_MULTI_SZ});
    EXPECT_EQ(std::wstring(list, 3), std::wstring(L"a\0b", 3));
    EXPECT_FALSE(kept_.IsKept());
    EXPECT_FALSE(HasKey(L"Software\\Kept"));
    // It is the same key, which others may watch.
    DWORD value = 0;
    size = sizeof value;
    EXPECT_EQ(RegQueryValueExW(watched.Get(), L"one", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size),
              ERROR_SUCCESS);
}

TEST_F(KeptRegistryTest, AKeyThatTheTestsDeletedComesBack) {
    Set(L"Software\\Ours\\Settings", L"one", 1);
    ASSERT_TRUE(kept_.Keep({{L"Software\\Ours\\Settings", L""}}));
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Ours");
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(Get(L"Software\\Ours\\Settings", L"one"), 1U);
}

TEST_F(KeptRegistryTest, AKeyThatWasNotThereGoesWithTheNewOnesAboveIt) {
    Set(L"Software\\Other", L"one", 1);
    ASSERT_TRUE(kept_.Keep({{L"Software\\Maker\\Suite\\Settings", L""}, {L"Software\\Other\\More", L""}}));
    Set(L"Software\\Maker\\Suite\\Settings\\Below", L"new", 7);
    Set(L"Software\\Other\\More", L"new", 7);
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_FALSE(HasKey(L"Software\\Maker"));
    EXPECT_FALSE(HasKey(L"Software\\Other\\More"));
    EXPECT_EQ(Get(L"Software\\Other", L"one"), 1U);
}

TEST_F(KeptRegistryTest, NewKeysThatOthersUseByNowStay) {
    Set(L"Software\\Other", L"one", 1);
    ASSERT_TRUE(kept_.Keep({{L"Software\\Maker\\Suite\\Settings", L""}}));
    Set(L"Software\\Maker\\Suite\\Settings", L"new", 7);
    Set(L"Software\\Maker", L"others", 3);
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_FALSE(HasKey(L"Software\\Maker\\Suite"));
    EXPECT_EQ(Get(L"Software\\Maker", L"others"), 3U);
}

TEST_F(KeptRegistryTest, OneValueIsGivenBackAndItsNeighboursStay) {
    Set(L"Software\\Theme", L"light", 1);
    ASSERT_TRUE(
        kept_.Keep({{L"Software\\Theme", L"light"}, {L"Software\\Theme", L"size"}, {L"Software\\Text", L"size"}}));
    Set(L"Software\\Theme", L"light", 0);
    Set(L"Software\\Theme", L"size", 200);
    Set(L"Software\\Theme", L"neighbour", 5);
    Set(L"Software\\Text", L"size", 200);
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(Get(L"Software\\Theme", L"light"), 1U);
    EXPECT_EQ(Get(L"Software\\Theme", L"size"), std::nullopt);
    EXPECT_EQ(Get(L"Software\\Theme", L"neighbour"), 5U);
    EXPECT_FALSE(HasKey(L"Software\\Text"));
}

TEST_F(KeptRegistryTest, AValueThatTheTestsRemovedComesBack) {
    Set(L"Software\\Theme", L"light", 1);
    ASSERT_TRUE(kept_.Keep({{L"Software\\Theme", L"light"}, {L"Software\\Text", L"size"}}));
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Theme");
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(Get(L"Software\\Theme", L"light"), 1U);
}

TEST_F(KeptRegistryTest, AnUnfinishedCopyIsNone) {
    Set(L"Software\\Kept\\0", L"Key", 1);
    Set(L"Software\\Kept\\9", L"Key", 1);
    EXPECT_FALSE(kept_.IsKept());
    Set(L"Software\\Theme", L"light", 1);
    ASSERT_TRUE(kept_.Keep({{L"Software\\Theme", L"light"}}));
    EXPECT_FALSE(HasKey(L"Software\\Kept\\9"));
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(Get(L"Software\\Theme", L"light"), 1U);
}

}  // namespace
}  // namespace proof
