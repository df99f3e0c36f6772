#pragma once
// The base of tests that run windows and pages of the program in the test's own process.
//
// What is real: registry, log file, pipe with a service on it, windows, resources. The process has a HKEY_CURRENT_USER
// of its own, and the settings key begins each test as an installation leaves it. A test fails when the log gets a
// line of level 4 that it did not expect. Thread: the test's, which is the UI thread.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "service/HomeService.h"
#include "tests/windows/support/Input.h"
#include "tools/service/PipeServer.h"

// What is on the list of the process's model, which otherwise holds files that the user picked.
struct HomeServiceTestAccess {
    static const std::vector<CustomImageRecord>& CustomItems() {
        return HomeService::GetInstance()->Backgrounds().List().Records();
    }
    static void AddCustomItem(const CustomImageRecord& record) {
        service::OwnBackgroundList list = HomeService::GetInstance()->Backgrounds().List();
        list.Append(record);
        list.SetPaths(record.name, record.sourcePath);
        HomeService::GetInstance()->Backgrounds().SetList(list);
    }
    static void Clear() { HomeService::GetInstance()->Backgrounds().SetList({}); }
};

class ProgramTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // --- the settings key
    static void Write(const wchar_t* name, int value);
    static void Write(const wchar_t* name, const std::wstring& value);
    static void Remove(const wchar_t* name);
    static std::optional<int> Number(const wchar_t* name);
    static std::optional<std::wstring> Text(const wchar_t* name);

    // --- the log: lines since the test began, without time and thread: "[L3] text(function)"
    std::vector<std::string> Log() const;
    // Those of them that end with "(function)".
    std::vector<std::string> LogOf(const std::string& function) const;
    // That line of level 4 is all right.
    void Expect(const std::string& line) { expected_.push_back(line); }

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
    std::size_t logStart_ = 0;
    std::size_t eventsStart_ = 0;
    std::vector<std::string> expected_;
};
