#include "suite/registry/RegistryText.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::optional<std::wstring> Decode(const std::vector<unsigned char>& bytes) {
    return DE::DecodeRegistryText(bytes.data(), bytes.size());
}

}  // namespace

TEST(RegistryTextTest, EndsAtTheTerminatorOrTheEnd) {
    EXPECT_EQ(Decode({}), L"");
    EXPECT_EQ(Decode({0, 0}), L"");
    EXPECT_EQ(Decode({'a', 0}), L"a");
    EXPECT_EQ(Decode({'a', 0, 0, 0}), L"a");
    EXPECT_EQ(Decode({'a', 0, 0, 0, 'b', 0}), L"a");
    EXPECT_EQ(Decode({0xE5, 0x65, 'b', 0}), L"\u65e5b");
}

TEST(RegistryTextTest, HalfACharacterIsNoText) {
    EXPECT_EQ(Decode({'a'}), std::nullopt);
    EXPECT_EQ(Decode({'a', 0, 0}), std::nullopt);
    EXPECT_EQ(Decode({'a', 0, 0, 0, 0}), std::nullopt);
}

TEST(RegistryTextTest, PathsLoseTheirFirstBackslashes) {
    EXPECT_EQ(DE::SystemKeyPath(L"\\SOFTWARE\\A"), L"SOFTWARE\\A");
    EXPECT_EQ(DE::SystemKeyPath(L"SOFTWARE\\A"), L"SOFTWARE\\A");
    EXPECT_EQ(DE::SystemKeyPath(L"\\\\A"), L"A");
    EXPECT_EQ(DE::SystemKeyPath(L"\\"), L"");
    EXPECT_EQ(DE::SystemKeyPath(L""), L"");
}
