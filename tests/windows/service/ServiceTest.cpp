#include "tests/windows/service/ServiceTest.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <sstream>

#include "suite/logger/QxLogger.h"

namespace {

constexpr const wchar_t* kKey = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";

std::wstring RegistryName() {
    return L"SOFTWARE\\PixoraServiceTest-" + std::to_wstring(GetCurrentProcessId());
}

std::string LogText() {
    std::ifstream file(std::filesystem::path(QxLogger::GetInstance()->FilePath()), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

bool PumpUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kDeadline;
    while (!condition()) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
            continue;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        // The condition may also come true by another thread.
        constexpr DWORD kLookAgainMs = 10;
        MsgWaitForMultipleObjectsEx(0, nullptr, kLookAgainMs, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
    return true;
}

std::filesystem::path ServiceTest::Folder() {
    return std::filesystem::temp_directory_path() / ("service_test-" + std::to_string(GetCurrentProcessId()));
}

void ServiceTest::SetUpTestSuite() {
    SetEnvironmentVariableW(L"LOCALAPPDATA", Folder().c_str());
    ASSERT_TRUE(QxLogger::GetInstance()->InitProcessLogger());
}

void ServiceTest::SetUp() {
    logStart_ = LogText().size();
    RegDeleteTreeW(HKEY_CURRENT_USER, RegistryName().c_str());
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, RegistryName().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &registry_, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, registry_), ERROR_SUCCESS);
}

void ServiceTest::TearDown() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(registry_);
    RegDeleteTreeW(HKEY_CURRENT_USER, RegistryName().c_str());
    for (const std::string& line : Lines()) {
        const bool expected = std::any_of(expected_.begin(), expected_.end(), [&line](const std::string& text) {
            return line.find(text) != std::string::npos;
        });
        if (line.find("[L4]") != std::string::npos && !expected) {
            ADD_FAILURE() << "unexpected in the log: " << line;
        }
    }
}

void ServiceTest::MakeEmptyKey() {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

void ServiceTest::DeleteKey() {
    ASSERT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, kKey), ERROR_SUCCESS);
}

bool ServiceTest::KeyExists() {
    HKEY key = nullptr;
    const bool exists = RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (exists) {
        RegCloseKey(key);
    }
    return exists;
}

void ServiceTest::Write(const std::wstring& name, const Value& value) {
    LSTATUS status = ERROR_SUCCESS;
    if (const int* number = std::get_if<int>(&value)) {
        status = RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str(), REG_DWORD, number, sizeof(*number));
    } else {
        const std::wstring& text = std::get<std::wstring>(value);
        status = RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str(), REG_SZ, text.c_str(),
                                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    ASSERT_EQ(status, ERROR_SUCCESS);
}

ServiceTest::Values ServiceTest::AllValues() {
    Values values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return values;
    }
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        std::vector<wchar_t> data(64 * 1024);
        DWORD nameLength = name.size();
        DWORD size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        DWORD type = 0;
        if (RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                          &size) != ERROR_SUCCESS) {
            break;
        }
        if (type == REG_DWORD) {
            values[name.data()] = *reinterpret_cast<const int*>(data.data());
        } else if (type == REG_SZ) {
            values[name.data()] = std::wstring(data.data());
        } else {
            ADD_FAILURE() << "a value of type " << type;
        }
    }
    RegCloseKey(key);
    return values;
}

std::optional<ServiceTest::Value> ServiceTest::Read(const std::wstring& name) {
    const Values values = AllValues();
    const auto found = values.find(name);
    return found != values.end() ? std::optional(found->second) : std::nullopt;
}

std::vector<std::string> ServiceTest::Lines() const {
    std::istringstream text(LogText().substr(logStart_));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

int ServiceTest::LogLines(const std::string& text) const {
    const std::vector<std::string> lines = Lines();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&text](const std::string& line) { return line.find(text) != std::string::npos; }));
}

int ServiceTest::FailedPings() const {
    return LogLines("ipcclient send message:1 error(HomeService::SendSignal)");
}

void ServiceTest::StartServer(PipeServer& server) {
    ASSERT_TRUE(server.Start(L"\\\\.\\Pipe\\iNotoraAssistant")) << "error " << GetLastError();
}

bool ServiceTest::WaitForModel(PipeServer& server) {
    const auto hello = server.WaitFor(ServerEvent::Kind::kHello, kDeadline);
    return hello && hello->frame.clientId == 0xCE0000;
}

std::optional<PipeFrame::Frame> ServiceTest::NextMessage(PipeServer& server) {
    auto event = server.WaitFor(ServerEvent::Kind::kMessage, kDeadline);
    return event ? std::optional(std::move(event->frame)) : std::nullopt;
}
