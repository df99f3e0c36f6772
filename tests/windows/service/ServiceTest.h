#pragma once
// What the tests of the settings model share: a registry of their own, the log, models, the server. Thread: the test's.
#include <windows.h>

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "service/HomeService.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Harness.h"
#include "tests/support/PrivateRegistry.h"
#include "tests/support/Protocol.h"
#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"
#include "tests/windows/support/HomeServiceAccess.h"
#include "tools/service/PipeServer.h"

using harness::PumpUntil;
inline constexpr std::chrono::milliseconds kDeadline = harness::kPatience;

// Each test has a HKEY_CURRENT_USER of its own, empty at first.
class ServiceTest : public testing::Test {
  protected:
    using Value = harness::SettingsKey::Value;
    using Values = harness::SettingsKey::Values;

    void SetUp() override;
    void TearDown() override;
    // The user's real registry again, for a test that looks at another process's.
    void UseRealRegistry() { registry_.reset(); }

    static HomeServiceTestAccess::Model MakeModel() { return HomeServiceTestAccess::Make(); }

    // The settings key.
    static void MakeEmptyKey() { harness::SettingsKey::MakeEmpty(); }
    static void DeleteKey() { harness::SettingsKey::Delete(); }
    static bool KeyExists() { return harness::SettingsKey::Exists(); }
    static void Write(const std::wstring& name, const Value& value) { harness::SettingsKey::Set(name, value); }
    static Values AllValues() { return harness::SettingsKey::All(); }
    static std::optional<Value> Read(const std::wstring& name) { return harness::SettingsKey::Get(name); }

    // Lines of the log since the test began that hold `text`.
    static int LogLines(const std::string& text) { return harness::TestLog::Count(testing::HasSubstr(text)); }
    // A line of level 4 with this text comes.
    static void Expect(const std::string& text) { harness::TestLog::Expect(testing::HasSubstr(text)); }
    // A line of level 4 with this text may come.
    static void Allow(const std::string& text) { harness::TestLog::Allow(testing::HasSubstr(text)); }
    // For models without a camera service: how many pings failed.
    static int FailedPings();

    // The camera service's stand-in, and the model's connection to it.
    void StartServer(PipeServer& server);
    // Waits for the model's greeting; false when none comes.
    static bool WaitForModel(PipeServer& server);
    static std::optional<PipeFrame::Frame> NextMessage(PipeServer& server);

    // The exit code of service_helper with those arguments.
    static DWORD RunHelper(const std::wstring& arguments) {
        return harness::ChildProcess(L"service_helper.exe", arguments).WaitForEnd();
    }

    // The local data folder of this test program.
    static const std::filesystem::path& Folder() { return harness::LocalDataFolder(); }

  private:
    std::optional<harness::PrivateRegistry> registry_;
};
