// Which code each way of the crash handler's registration ends with, and what the library is given.
#include "app/CrashHandler.h"

#include <gmock/gmock.h>

#include <optional>

#include "app/InstallSettings.h"
#include "suite/crashdump/CrashRegistration.h"
#include "tests/support/Harness.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/app/FakeSuite.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::uint32_t Register() {
    return CrashHandler::GetInstance().Register(true, false, L"product", 7, L"application");
}

// In one test, for the library is looked for once in a process.
TEST(CrashHandlerTest, EachStepHasItsCode) {
    FakeSuite suite;
    suite.hasReporter = false;
    EXPECT_EQ(Register(), 0xFFFFFFFF);
    EXPECT_THAT(suite.TakeAsked(), ElementsAre(std::wstring(InstallSettings::kInstallFolder) + L"QxCrashReporter.exe"));
    EXPECT_THAT(suite.TakeLoaded(), IsEmpty()) << "nothing else is done";

    suite.hasReporter = true;
    suite.hasLibrary = false;
    EXPECT_EQ(Register(), DWORD{ERROR_MOD_NOT_FOUND});
    EXPECT_THAT(suite.TakeLoaded(), ElementsAre(harness::ProgramFolder() + L"QxCrashDump.dll"));

    suite.hasLibrary = true;
    suite.hasExport = false;
    EXPECT_EQ(Register(), DWORD{ERROR_PROC_NOT_FOUND});
    EXPECT_THAT(suite.TakeLoaded(), ElementsAre(harness::ProgramFolder() + L"QxCrashDump.dll"));

    suite.hasExport = true;
    EXPECT_EQ(Register(), 0U);
    EXPECT_THAT(suite.TakeLoaded(), IsEmpty()) << "the library is there already";
    const std::optional<CrashRegistration> record = suite.TakeRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->enableFlag, 1);
    EXPECT_EQ(record->secondFlag, 0);
    EXPECT_EQ(record->reserved, 0);
    EXPECT_EQ(record->mode, 7);
    EXPECT_EQ(record->appName, L"application");
    EXPECT_EQ(record->productName, L"product");

    EXPECT_EQ(CrashHandler::GetInstance().Register(false, true, L"", 0, L""), 0U);
    const std::optional<CrashRegistration> other = suite.TakeRecord();
    ASSERT_TRUE(other);
    EXPECT_EQ(other->enableFlag, 0);
    EXPECT_EQ(other->secondFlag, 1);
}

}  // namespace
