#include "tools/proof/KeptFolder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "suite/common/Handle.h"
#include "tests/support/Harness.h"

namespace proof {
namespace {

namespace fs = std::filesystem;

class KeptFolderTest : public testing::Test {
  protected:
    KeptFolderTest() { fs::create_directories(root_); }
    ~KeptFolderTest() override { harness::RemoveTree(root_); }

    void Put(const std::wstring& name, const std::string& text) const {
        fs::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    std::string ContentOf(const std::wstring& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Names in the folder above.
    std::size_t Beside() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.parent_path()), {}));
    }

    const fs::path root_ = harness::LocalDataFolder() / L"kept";
    const fs::path folder_ = root_ / L"Comms" / L"LumiCamera";
    const KeptFolder kept_{folder_.wstring()};
};

TEST_F(KeptFolderTest, IsMovedAsideAndBack) {
    Put(L"S-1\\a.jpg", "the user's");
    EXPECT_FALSE(kept_.IsKept());
    ASSERT_TRUE(kept_.Keep());
    EXPECT_TRUE(kept_.IsKept());
    EXPECT_FALSE(fs::exists(folder_));
    Put(L"S-1\\a.jpg", "the tests'");
    Put(L"S-1\\b\\c.jpg", "the tests'");
    SetFileAttributesW((folder_ / L"S-1\\b\\c.jpg").c_str(), FILE_ATTRIBUTE_READONLY);
    // The next run, as it were: nothing is remembered but on the disk.
    EXPECT_TRUE(KeptFolder(folder_.wstring()).GiveBack());
    EXPECT_EQ(ContentOf(L"S-1\\a.jpg"), "the user's");
    EXPECT_FALSE(fs::exists(folder_ / L"S-1\\b"));
    EXPECT_FALSE(kept_.IsKept());
    EXPECT_EQ(Beside(), 1U);
}

TEST_F(KeptFolderTest, WhatWasNotThereGoes) {
    fs::create_directory(folder_.parent_path());
    ASSERT_TRUE(kept_.Keep());
    EXPECT_TRUE(kept_.IsKept());
    Put(L"a.jpg", "the tests'");
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_FALSE(kept_.IsKept());
    EXPECT_EQ(Beside(), 0U);
}

TEST_F(KeptFolderTest, TheParentGoesTooWhenItWasNotThere) {
    ASSERT_TRUE(kept_.Keep());
    EXPECT_TRUE(kept_.IsKept());
    EXPECT_TRUE(fs::exists(folder_.parent_path()));
    Put(L"a.jpg", "the tests'");
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_FALSE(fs::exists(folder_.parent_path()));
    // Unless somebody else uses it by now.
    ASSERT_TRUE(kept_.Keep());
    std::ofstream(folder_.parent_path() / L"other.txt") << "x";
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(Beside(), 1U);
}

TEST_F(KeptFolderTest, AFileInItsPlaceGoes) {
    fs::create_directory(folder_.parent_path());
    ASSERT_TRUE(kept_.Keep());
    std::ofstream(folder_) << "a file";
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_FALSE(fs::exists(folder_));
}

TEST_F(KeptFolderTest, WhatIsInUseStaysKept) {
    Put(L"a.jpg", "the user's");
    ASSERT_TRUE(kept_.Keep());
    Put(L"b.jpg", "the tests'");
    {
        const suite::Handle open(
            CreateFileW((folder_ / L"b.jpg").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(open);
        EXPECT_FALSE(kept_.GiveBack());
        EXPECT_TRUE(kept_.IsKept());
    }
    EXPECT_TRUE(kept_.GiveBack());
    EXPECT_EQ(ContentOf(L"a.jpg"), "the user's");
}

TEST_F(KeptFolderTest, ThatCannotBeMovedIsLeftAlone) {
    Put(L"a.jpg", "the user's");
    const suite::Handle open(CreateFileW(folder_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    ASSERT_TRUE(open);
    EXPECT_FALSE(kept_.Keep());
    EXPECT_FALSE(kept_.IsKept());
    EXPECT_EQ(ContentOf(L"a.jpg"), "the user's");
}

}  // namespace
}  // namespace proof
