#pragma once
// A folder of one test's own, and a file that another program seems to hold. Test thread.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "suite/common/Handle.h"

namespace setup {

class SetupTest : public testing::Test {
  protected:
    void SetUp() override {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = std::filesystem::path(temp) / (L"pixora-setup-" + std::wstring(test.begin(), test.end()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::wstring Path(const std::wstring& name) const { return (folder_ / name).wstring(); }
    std::wstring Put(const std::wstring& name, const std::string& content = "content") const {
        const std::filesystem::path path = folder_ / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path.wstring();
    }
    static std::string ContentOf(const std::wstring& path) {
        std::ifstream file{std::filesystem::path(path), std::ios::binary};
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static suite::Handle Hold(const std::wstring& path, DWORD share) {
        suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        EXPECT_TRUE(file);
        return file;
    }

    std::filesystem::path folder_;
};

}  // namespace setup
