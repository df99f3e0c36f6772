#include "suite/registry/Registry.h"

#include <gtest/gtest.h>

#include <vector>

using DE::Registry;

namespace {

constexpr REGSAM kAll = 0xF003F;

// Each test works in a key of its own, which is gone afterwards.
class RegistryTest : public testing::Test {
  protected:
    RegistryTest() : path_(L"SOFTWARE\\SuiteRegistryTest-" + std::to_wstring(GetCurrentProcessId())) {
        EXPECT_TRUE(Registry().CreateKey(path_));
    }
    ~RegistryTest() override { RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()); }

    void WriteRaw(const wchar_t* name, DWORD type, const std::vector<BYTE>& bytes) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, path_.c_str(), name, type, bytes.data(),
                                  static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
    }
    bool Get(const wchar_t* name, int& value) {
        return Registry::GetValue(HKEY_CURRENT_USER, path_, name, value, kAll);
    }
    bool Get(const wchar_t* name, std::wstring& value) {
        return Registry::GetValue(HKEY_CURRENT_USER, path_, name, value, kAll);
    }
    template <typename Value>
    bool Set(const wchar_t* name, const Value& value) {
        return Registry::SetValue(HKEY_CURRENT_USER, path_, name, value, kAll);
    }

    const std::wstring path_;
};

}  // namespace

TEST_F(RegistryTest, NumbersComeBack) {
    for (const int number : {0, 1, 5, -1, 2147483647, -2147483647 - 1}) {
        ASSERT_TRUE(Set(L"n", number));
        int value = 77;
        EXPECT_TRUE(Get(L"n", value));
        EXPECT_EQ(value, number);
    }
    DWORD type = 0;
    DWORD size = 0;
    RegGetValueW(HKEY_CURRENT_USER, path_.c_str(), L"n", RRF_RT_ANY, &type, nullptr, &size);
    EXPECT_EQ(type, DWORD{REG_DWORD});
    EXPECT_EQ(size, 4u);
}

TEST_F(RegistryTest, TextsComeBack) {
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"a"), std::wstring(L"\u00e4\u65e5\U0001F600"), std::wstring(100000, L'x')}) {
        ASSERT_TRUE(Set(L"t", text));
        std::wstring value = L"before";
        EXPECT_TRUE(Get(L"t", value));
        EXPECT_TRUE(value == text) << value.size();
    }
    DWORD type = 0;
    DWORD size = 0;
    ASSERT_TRUE(Set(L"t", std::wstring(L"abc")));
    RegGetValueW(HKEY_CURRENT_USER, path_.c_str(), L"t", RRF_RT_ANY, &type, nullptr, &size);
    EXPECT_EQ(type, DWORD{REG_SZ});
    EXPECT_EQ(size, 8u);
}

TEST_F(RegistryTest, ALeadingBackslashIsTheSamePath) {
    ASSERT_TRUE(Registry::SetValue(HKEY_CURRENT_USER, L"\\" + path_, L"n", 3, kAll));
    int value = 0;
    EXPECT_TRUE(Get(L"n", value));
    EXPECT_EQ(value, 3);
    value = 0;
    EXPECT_TRUE(Registry::GetValue(HKEY_CURRENT_USER, L"\\" + path_, L"n", value, kAll));
    EXPECT_EQ(value, 3);
    EXPECT_TRUE(Registry().KeyExists(L"\\" + path_));
    EXPECT_TRUE(Registry().CreateKey(L"\\" + path_ + L"\\sub"));
    EXPECT_TRUE(Registry().KeyExists(path_ + L"\\sub"));
}

TEST_F(RegistryTest, AReadThatFailsLeavesTheOutputAlone) {
    WriteRaw(L"text", REG_SZ, {'1', 0, 0, 0});
    WriteRaw(L"number", REG_DWORD, {1, 0, 0, 0});
    WriteRaw(L"long number", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    WriteRaw(L"short number", REG_DWORD, {1, 0});
    WriteRaw(L"wide number", REG_DWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    WriteRaw(L"no number", REG_DWORD, {});
    WriteRaw(L"binary", REG_BINARY, {'a', 0, 0, 0});
    WriteRaw(L"many", REG_MULTI_SZ, {'a', 0, 0, 0, 0, 0});
    WriteRaw(L"odd", REG_SZ, {'a', 0, 'b'});
    for (const wchar_t* name : {L"text", L"long number", L"short number", L"wide number", L"no number", L"binary",
                                L"many", L"odd", L"missing"}) {
        int value = 77;
        EXPECT_FALSE(Get(name, value)) << testing::PrintToString(std::wstring(name));
        EXPECT_EQ(value, 77);
    }
    for (const wchar_t* name : {L"number", L"long number", L"binary", L"many", L"odd", L"missing"}) {
        std::wstring value = L"before";
        EXPECT_FALSE(Get(name, value)) << testing::PrintToString(std::wstring(name));
        EXPECT_EQ(value, L"before");
    }
}

TEST_F(RegistryTest, TextWithoutTerminatorOrWithMoreThanOneIsRead) {
    const std::vector<std::pair<std::vector<BYTE>, std::wstring>> cases = {
        {{'a', 0, 'b', 0}, L"ab"},
        {{'a', 0, 'b', 0, 0, 0, 0, 0}, L"ab"},
        {{'a', 0, 0, 0, 'b', 0, 0, 0}, L"a"},
        {{0, 0}, L""},
        {{}, L""},
    };
    for (const auto& [bytes, text] : cases) {
        WriteRaw(L"t", REG_SZ, bytes);
        std::wstring value = L"before";
        EXPECT_TRUE(Get(L"t", value));
        EXPECT_EQ(value, text);
    }
    WriteRaw(L"t", REG_EXPAND_SZ, {'%', 0, 'a', 0, '%', 0, 0, 0});
    std::wstring value;
    EXPECT_TRUE(Get(L"t", value));
    EXPECT_EQ(value, L"%a%");
}

TEST_F(RegistryTest, AHugeTextIsReadWhole) {
    const std::wstring huge(2 * 1024 * 1024, L'h');
    ASSERT_TRUE(Set(L"t", huge));
    std::wstring value;
    EXPECT_TRUE(Get(L"t", value));
    EXPECT_TRUE(value == huge);
}

TEST_F(RegistryTest, AMissingKeyIsNeitherReadNorMade) {
    const std::wstring missing = path_ + L"\\missing";
    int number = 77;
    std::wstring text = L"before";
    EXPECT_FALSE(Registry::GetValue(HKEY_CURRENT_USER, missing, L"n", number, kAll));
    EXPECT_FALSE(Registry::GetValue(HKEY_CURRENT_USER, missing, L"t", text, kAll));
    EXPECT_FALSE(Registry::SetValue(HKEY_CURRENT_USER, missing, L"n", 1, kAll));
    EXPECT_FALSE(Registry::SetValue(HKEY_CURRENT_USER, missing, L"t", std::wstring(L"x"), kAll));
    EXPECT_EQ(number, 77);
    EXPECT_EQ(text, L"before");
    EXPECT_FALSE(Registry().KeyExists(missing));
}

TEST_F(RegistryTest, ADeletedKeyIsGone) {
    ASSERT_TRUE(Set(L"n", 1));
    HKEY stillOpen = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, KEY_READ, &stillOpen), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS);
    int value = 77;
    EXPECT_FALSE(Get(L"n", value));
    EXPECT_FALSE(Set(L"n", 1));
    EXPECT_FALSE(Registry().KeyExists(path_));
    EXPECT_EQ(value, 77);
    EXPECT_TRUE(Registry().CreateKey(path_));
    EXPECT_TRUE(Registry().KeyExists(path_));
    EXPECT_FALSE(Get(L"n", value));
    RegCloseKey(stillOpen);
}

TEST_F(RegistryTest, TheAccessMaskCounts) {
    EXPECT_FALSE(Registry::SetValue(HKEY_CURRENT_USER, path_, L"n", 1, KEY_READ));
    ASSERT_TRUE(Set(L"n", 1));
    int value = 0;
    EXPECT_TRUE(Registry::GetValue(HKEY_CURRENT_USER, path_, L"n", value, KEY_READ));
    EXPECT_EQ(value, 1);
    EXPECT_FALSE(Registry::GetValue(HKEY_CURRENT_USER, path_, L"n", value, KEY_SET_VALUE));
}

TEST_F(RegistryTest, AnInstanceLooksInItsHive) {
    Registry registry(HKEY_LOCAL_MACHINE);
    EXPECT_FALSE(registry.KeyExists(path_));
    registry.SetRootKey(HKEY_CURRENT_USER);
    EXPECT_TRUE(registry.KeyExists(path_));
    EXPECT_TRUE(registry.CreateKey(path_ + L"\\a\\b\\c"));
    EXPECT_TRUE(registry.CreateKey(path_ + L"\\a\\b\\c"));
    EXPECT_TRUE(registry.KeyExists(path_ + L"\\a\\b"));
    registry.SetRootKey(reinterpret_cast<HKEY>(0x1234));
    EXPECT_FALSE(registry.KeyExists(path_));
    EXPECT_FALSE(registry.CreateKey(path_));
}
