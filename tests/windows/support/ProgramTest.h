#pragma once
// The base of tests that run windows and pages of the program in the test's own process.
//
// What is real: registry, log file, pipe with a service on it, windows, resources. The process has a HKEY_CURRENT_USER
// of its own, and the settings key begins each test as an installation leaves it. Thread: the test's, which is the UI
// thread.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"
#include "tests/windows/support/HomeServiceAccess.h"
#include "tests/windows/support/Input.h"
#include "tools/service/PipeServer.h"

class ProgramTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // --- the settings key
    static void Write(const wchar_t* name, const harness::SettingsKey::Value& value) {
        harness::SettingsKey::Set(name, value);
    }
    static void Remove(const wchar_t* name) { harness::SettingsKey::Remove(name); }
    static std::optional<int> Number(const wchar_t* name) { return harness::SettingsKey::Number(name); }
    static std::optional<std::wstring> Text(const wchar_t* name) { return harness::SettingsKey::Text(name); }

    // --- the log: lines since the test began, without time and thread: "[L3] text(function)"
    static std::vector<std::string> Log() { return harness::TestLog::Lines(); }
    // Those of them that end with "(function)".
    static std::vector<std::string> LogOf(const std::string& function) { return harness::TestLog::LinesOf(function); }
    // That line of level 4 comes.
    static void Expect(const std::string& line) { harness::TestLog::Expect(line); }

    // --- the camera service's end of the pipe
    static PipeServer& Service();
    // The codes of the messages that the program sends until (and without) a mark that this call sends after them.
    std::vector<std::int32_t> SentMessages();
    // Sends a message to the program.
    static void SendFromService(std::int32_t code, std::int32_t subCode);

    // --- the usage events since the test began, each as "event text" or "event" with its fields
    std::vector<std::string> UsageEvents();

    // Folder of the test programs, with a trailing backslash.
    static std::wstring ProgramFolder();
    // A folder for files of this process, with a trailing backslash.
    static std::wstring OwnFolder();

  private:
    std::size_t eventsStart_ = 0;
};
