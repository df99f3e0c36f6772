#include "tools/proof/TestProgram.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "suite/common/Handle.h"
#include "suite/common/Utf8.h"
#include "tests/support/Harness.h"
#include "tests/support/Wait.h"

namespace proof {
namespace {

namespace fs = std::filesystem;

class TestProgramTest : public testing::Test {
  protected:
    TestProgramTest() : root_(harness::LocalDataFolder() / L"a folder \u0436") {
        fs::create_directories(root_ / L"bin");
        fs::create_directories(root_ / L"work \u0436");
        fs::copy_file(harness::ProgramFolder() + L"proof_child.exe", root_ / L"bin" / L"proof_child.exe",
                      fs::copy_options::overwrite_existing);
    }
    ~TestProgramTest() override { harness::RemoveTree(root_); }

    static ListedTest Of(const std::string& arguments, int seconds = 60) {
        return {"child", "bin\\proof_child.exe", arguments, "work \u0436", seconds, {"PIXORA_OF_THE_LIST=a=\u0436"}};
    }
    Ending Run(const ListedTest& test) { return RunProgram(test, root_, root_ / L"out.txt", stop_.Get()); }
    std::string Output() const {
        std::ifstream file(root_ / L"out.txt", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // No process holds the event any more.
    static bool IsGone(const wchar_t* event) {
        return harness::WaitUntil([&] { return !suite::Handle(OpenEventW(SYNCHRONIZE, FALSE, event)); });
    }

    const fs::path root_;
    const suite::Handle stop_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(TestProgramTest, RunsInItsFolderWithItsVariablesAndWithoutInput) {
    const Ending ending = Run(Of("tell"));
    EXPECT_EQ(ending.how, Ending::How::kByItself);
    EXPECT_EQ(ending.code, 7U);
    EXPECT_EQ(Output(), suite::ToUtf8((root_ / L"work \u0436").wstring()) + "\r\na=\u0436\r\n-1\r\nan error\r\n");
    EXPECT_EQ(_wgetenv(L"PIXORA_OF_THE_LIST"), nullptr);
}

TEST_F(TestProgramTest, WhatItLeavesRunningEndsWithIt) {
    constexpr wchar_t kEvent[] = L"PixoraProofLeft";
    const Ending ending = Run(Of("leave PixoraProofLeft"));
    EXPECT_EQ(ending.how, Ending::How::kByItself);
    EXPECT_TRUE(IsGone(kEvent));
}

TEST_F(TestProgramTest, ThatDoesNotEndIsEndedWithWhatItStarted) {
    const Ending ending = Run(Of("wait PixoraProofWait", 1));
    EXPECT_EQ(ending.how, Ending::How::kTooLong);
    EXPECT_TRUE(IsGone(L"PixoraProofWait"));
}

TEST_F(TestProgramTest, IsStoppedByTheEvent) {
    SetEvent(stop_.Get());
    EXPECT_EQ(Run(Of("wait PixoraProofStop", 600)).how, Ending::How::kStopped);
    EXPECT_TRUE(IsGone(L"PixoraProofStop"));
}

TEST_F(TestProgramTest, ThatIsMissingIsTold) {
    ListedTest missing = Of("tell");
    missing.program = "bin\\nothing.exe";
    const Ending ending = Run(missing);
    EXPECT_EQ(ending.how, Ending::How::kNotStarted);
    EXPECT_EQ(ending.code, DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
}  // namespace proof
