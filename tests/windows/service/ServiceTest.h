#pragma once
// What the tests of the settings model share: a registry of their own, the log, the report spool, models, the server.
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
#include "tools/service/PipeServer.h"

// How long a test waits for something that has to happen.
inline constexpr std::chrono::milliseconds kDeadline{20000};

// Models beside the process-wide one, and what is on their lists.
struct HomeServiceTestAccess {
    using Model = std::unique_ptr<HomeService>;

    static Model Make() { return std::make_unique<HomeService>(); }
    static const std::vector<CustomImageRecord>& CustomItems(HomeService& model) {
        return model.Backgrounds().List().Records();
    }
    static const std::map<std::wstring, std::wstring>& CustomByName(HomeService& model) {
        return model.Backgrounds().List().FilePaths();
    }
    // As InitCustomImage for that user.
    static void LoadCustomImages(HomeService& model, const std::wstring& userSid) { model.Backgrounds().Load(userSid); }
    static bool HasTakenASnapshot(HomeService& model) { return model.Status().HasRead(); }
};

// Runs messages of the calling thread until the condition holds, which is looked at after each; false when the deadline
// passes.
bool PumpUntil(const std::function<bool()>& condition);

// Each test has a HKEY_CURRENT_USER of its own, empty at first, and fails when the log gets a line of level 4 that it
// did not expect.
class ServiceTest : public testing::Test {
  protected:
    using Value = std::variant<int, std::wstring>;
    using Values = std::map<std::wstring, Value>;

    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    static HomeServiceTestAccess::Model MakeModel() { return HomeServiceTestAccess::Make(); }

    // The settings key.
    static void MakeEmptyKey();
    static void DeleteKey();
    static bool KeyExists();
    static void Write(const std::wstring& name, const Value& value);
    static Values AllValues();
    // Nothing when there is no such value or it is no number or text.
    static std::optional<Value> Read(const std::wstring& name);

    // Lines of the log since the test began that hold `text`.
    int LogLines(const std::string& text) const;
    // A line of level 4 with this text is all right.
    void Expect(const std::string& level4Text) { expected_.push_back(level4Text); }
    // For models without a camera service: how many pings failed.
    int FailedPings() const;

    // The camera service's stand-in, and the model's connection to it.
    void StartServer(PipeServer& server);
    // Waits for the model's greeting; false when none comes.
    static bool WaitForModel(PipeServer& server);
    static std::optional<PipeFrame::Frame> NextMessage(PipeServer& server);

    // A folder of this test program.
    static std::filesystem::path Folder();

  private:
    std::vector<std::string> Lines() const;

    HKEY registry_ = nullptr;
    std::size_t logStart_ = 0;
    std::vector<std::string> expected_;
};
