// Libraries of the system: what happens when one is missing, and that a false one beside the program is left alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "app/InstallSettings.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/MissingDll.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"

namespace e2e {
namespace {

using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr wchar_t kFalseLibrary[] = L"FalseLibrary.dll";

class SystemLibrariesTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!DllOrigin::CanBe())
            GTEST_SKIP() << "this system cannot be told where its DLLs are";
        Machine::ResetToInstalled();
    }
    void TearDown() override { Machine::UseProgram(L"Pixora"); }

    // The window works, the preview does not: one message, and the switch is off again.
    static void ExpectNoPreview() {
        Program program;
        ASSERT_TRUE(program.WaitForWindow());
        program.Click(L"preview_switch");
        const auto message = program.TakeMessage();
        ASSERT_TRUE(message);
        EXPECT_NE(message->find(L"The camera can’t be used."), std::wstring::npos) << "it says something else";
        const auto previewSwitch = program.Find(L"preview_switch");
        ASSERT_TRUE(previewSwitch);
        EXPECT_FALSE(previewSwitch->state & STATE_SYSTEM_CHECKED);
        program.Click(L"closebtn");
        EXPECT_EQ(program.WaitForEnd(), 0U);
    }
};

// As on editions of the system that come without Media Foundation.
TEST_F(SystemLibrariesTest, WithoutMediaFoundationOnlyThePreviewDoesNotWork) {
    const MissingDll missing(L"Pixora.exe", L"mfplat");
    Machine::Expect("[L4] this system has no mfplat.dll: 126(SystemLibrary::Load)");
    ExpectNoPreview();
}

TEST_F(SystemLibrariesTest, WithoutTheListOfDevicesOnlyThePreviewDoesNotWork) {
    const MissingDll missing(L"Pixora.exe", L"mf");
    Machine::Expect("[L4] this system has no mf.dll: 126(SystemLibrary::Load)");
    Machine::Expect("[L4] enum device error!(Preview::SelectDevice)");
    ExpectNoPreview();
}

TEST_F(SystemLibrariesTest, WithoutTheSourceReaderOnlyThePreviewDoesNotWork) {
    Machine::UseProgram(L"PixoraDemo");
    Machine::ResetToInstalled();
    const MissingDll missing(L"PixoraDemo.exe", L"mfreadwrite");
    Machine::Expect("[L4] this system has no mfreadwrite.dll: 126(SystemLibrary::Load)");
    Machine::Expect("[L4] create source reader error!(Preview::CreateDeviceSource)");
    Machine::Expect("[L4] create device source error!(Preview::Start)");
    ExpectNoPreview();
}

TEST_F(SystemLibrariesTest, WithoutOneFunctionOnlyThePreviewDoesNotWork) {
    const ReplacedDll empty(L"Pixora.exe", L"mf", fs::path(ProgramFolder()) / kFalseLibrary);
    Machine::Expect("[L4] mf.dll has no MFEnumDeviceSources: 127(SystemLibrary::Find)");
    Machine::Expect("[L4] enum device error!(Preview::SelectDevice)");
    ExpectNoPreview();
}

// A copy of the program in a folder of its own, as the portable zip is.
class PortableCopyTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        folder_ = fs::path(temp) / L"pixora-portable";
        ASSERT_TRUE(Removed());
        fs::create_directories(folder_);
        const fs::path from = ProgramFolder();
        for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
            const std::wstring name = entry.path().filename();
            const bool isOurs = name.starts_with(L"Qx") || name.starts_with(L"lib") || name == L"DuiLib.dll";
            if (name == L"Pixora.exe" || (isOurs && entry.path().extension() == L".dll"))
                fs::copy_file(entry.path(), folder_ / name);
        }
        fs::copy(from / L"res", folder_ / L"res", fs::copy_options::recursive);
        fs::copy(from / L"plugins", folder_ / L"plugins", fs::copy_options::recursive);
    }
    void TearDown() override { EXPECT_TRUE(Removed()); }

    // What a program that has just ended, or a scanner, holds for a moment keeps its folder.
    bool Removed() const {
        return harness::WaitUntil([this] {
            std::error_code result;
            fs::remove_all(folder_, result);
            return !fs::exists(folder_);
        });
    }

    void Plant(const std::wstring& name) const {
        fs::copy_file(fs::path(ProgramFolder()) / kFalseLibrary, folder_ / name, fs::copy_options::overwrite_existing);
    }
    std::vector<std::wstring> Loaded() const {
        std::vector<std::wstring> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
            if (entry.path().extension() == L".loaded")
                names.push_back(entry.path().stem().wstring());
        }
        return names;
    }

    fs::path folder_;
};

TEST_F(PortableCopyTest, FalseLibrariesBesideItAreNotLoaded) {
    for (const wchar_t* name :
         {L"mf.dll", L"mfplat.dll", L"mfreadwrite.dll", L"d3d9.dll", L"oleacc.dll", L"comdlg32.dll", L"wtsapi32.dll",
          L"secur32.dll", L"dwmapi.dll", L"xmllite.dll", L"windowscodecs.dll", L"dbghelp.dll", L"msimg32.dll"}) {
        Plant(name);
    }
    // What is planted leaves its mark, if it is ever loaded.
    Plant(L"planted.dll");
    const HMODULE planted = LoadLibraryW((folder_ / L"planted.dll").c_str());
    ASSERT_TRUE(planted);
    FreeLibrary(planted);
    ASSERT_THAT(Loaded(), testing::ElementsAre(L"planted.dll"));
    fs::remove(folder_ / L"planted.dll.loaded");

    harness::TestLog::Expect(testing::HasSubstr("can not find any video device!(Preview::SelectDevice)"));
    Program program(L"run", folder_.wstring() + L"\\");
    ASSERT_TRUE(program.WaitForWindow());
    program.Click(L"preview_switch");
    ASSERT_TRUE(program.TakeMessage());
    program.Click(L"closebtn");
    EXPECT_EQ(program.WaitForEnd(), 0U);
    EXPECT_THAT(Loaded(), IsEmpty());
}

// The crash-dump library is loaded before anything else: what is true then is true for all that comes.
TEST_F(PortableCopyTest, LibrariesAreLookedForInTheSystemBeforeAnythingElse) {
    const fs::path reporter = fs::path(InstallSettings::kInstallFolder) / InstallSettings::kCrashReporter;
    const bool had = fs::exists(reporter);
    fs::create_directories(reporter.parent_path());
    std::ofstream(reporter, std::ios::app) << "";
    Plant(InstallSettings::kCrashLibrary);
    Plant(L"planted.dll");
    Program program(L"run", folder_.wstring() + L"\\");
    ASSERT_TRUE(program.WaitForWindow());
    program.Click(L"closebtn");
    EXPECT_EQ(program.WaitForEnd(), 0U);
    if (!had)
        fs::remove(reporter);
    std::ifstream told(folder_ / L"start.txt", std::ios::binary);
    // 1: SEM_FAILCRITICALERRORS
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(told), {}), "error mode 1, planted.dll not loaded");
}

}  // namespace
}  // namespace e2e
