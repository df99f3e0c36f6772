#include "suite/common/SystemLibrary.h"

#include <gmock/gmock.h>

#include <objbase.h>

#include <atomic>
#include <thread>

#include "tests/support/TestLog.h"

namespace suite {
namespace {

namespace TestLog = harness::TestLog;
using testing::ElementsAre;
using testing::IsEmpty;

// Of no known function; that it is an HRESULT is what counts.
using Operation = HRESULT(WINAPI*)(int);

class SystemLibraryTest : public testing::Test {
  protected:
    static std::vector<std::string> Lines() {
        std::vector<std::string> lines = TestLog::LinesOf("SystemLibrary::Load");
        const std::vector<std::string> more = TestLog::LinesOf("SystemLibrary::Find");
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    }
};

TEST_F(SystemLibraryTest, AFunctionThatIsThereIsCalled) {
    SystemLibrary library(L"kernel32.dll");
    SystemFunction<decltype(&MulDiv)> mulDiv(library, "MulDiv");
    EXPECT_EQ(mulDiv.Get(), &MulDiv);
    EXPECT_EQ(mulDiv.CallOr(-1, 6, 7, 2), 21);
    EXPECT_EQ(library.Load(), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(SystemLibraryTest, AnHresultComesBackAsItIs) {
    SystemLibrary library(L"ole32.dll");
    SystemFunction<decltype(&CoInitializeEx)> initialize(library, "CoInitializeEx");
    SystemFunction<decltype(&CoUninitialize)> uninitialize(library, "CoUninitialize");
    EXPECT_EQ(initialize(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(initialize(nullptr, COINIT_MULTITHREADED), S_FALSE);
    uninitialize.Get()();
    uninitialize.Get()();
}

TEST_F(SystemLibraryTest, AMissingLibraryIsAnErrorAndToldOnce) {
    constexpr char kLine[] = "[L4] this system has no pixora-none.dll: 126(SystemLibrary::Load)";
    TestLog::Expect(kLine);
    SystemLibrary library(L"pixora-none.dll");
    SystemFunction<Operation> first(library, "First");
    SystemFunction<Operation> second(library, "Second");
    EXPECT_EQ(first.Get(), nullptr);
    EXPECT_EQ(first(1), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(second(1), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(second.CallOr(7, 1), 7);
    EXPECT_EQ(library.Load(), DWORD{ERROR_MOD_NOT_FOUND});
    EXPECT_THAT(Lines(), ElementsAre(kLine));
}

TEST_F(SystemLibraryTest, AMissingFunctionIsAnErrorAndToldOnce) {
    constexpr char kLine[] = "[L4] kernel32.dll has no PixoraNone: 127(SystemLibrary::Find)";
    TestLog::Expect(kLine);
    SystemLibrary library(L"kernel32.dll");
    SystemFunction<Operation> missing(library, "PixoraNone");
    EXPECT_EQ(missing(1), HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(missing(1), HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(library.Load(), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(Lines(), ElementsAre(kLine));
}

TEST_F(SystemLibraryTest, NamesTellWhatItIs) {
    SystemLibrary library(L"kernel32.dll");
    SystemFunction<Operation> function(library, "Name");
    EXPECT_STREQ(library.Name(), L"kernel32.dll");
    EXPECT_STREQ(function.Name(), "Name");
    EXPECT_EQ(&function.Library(), &library);
}

// FalseLibrary.dll lies beside this program, where a search of the system's default would find it.
TEST_F(SystemLibraryTest, AFileBesideTheProgramIsNotOfTheSystem) {
    TestLog::Expect("[L4] this system has no FalseLibrary.dll: 126(SystemLibrary::Load)");
    SystemLibrary library(L"FalseLibrary.dll");
    EXPECT_EQ(library.Load(), DWORD{ERROR_MOD_NOT_FOUND});
}

TEST_F(SystemLibraryTest, ALibraryIsLoadedWhenItIsNeeded) {
    SystemLibrary library(L"avifil32.dll");
    SystemFunction<decltype(&MulDiv)> function(library, "AVIFileInit");
    ASSERT_EQ(GetModuleHandleW(L"avifil32.dll"), nullptr);
    EXPECT_NE(function.Get(), nullptr);
    EXPECT_NE(GetModuleHandleW(L"avifil32.dll"), nullptr);
}

TEST_F(SystemLibraryTest, ThreadsThatNeedItAtOnceAllGetIt) {
    constexpr int kThreads = 8;
    constexpr char kLine[] = "[L4] version.dll has no PixoraNone: 127(SystemLibrary::Find)";
    TestLog::Expect(kLine);
    SystemLibrary library(L"version.dll");
    SystemFunction<decltype(&MulDiv)> found(library, "VerQueryValueW");
    SystemFunction<Operation> missing(library, "PixoraNone");
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            if (found.Get() && missing(1) == HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)) {
                ++right;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, kThreads);
    EXPECT_THAT(Lines(), ElementsAre(kLine));
}

}  // namespace
}  // namespace suite
