#include "tests/support/CallTrace.h"

#include <gtest/gtest.h>

#include <utility>

#include "suite/common/Utf8.h"
#include "suite/ipc/IPCMessageClient.h"
#include "suite/report/EventDataReport.h"
#include "tests/support/Protocol.h"

namespace harness {

namespace {

// Of the one that lives, for the hooks.
struct Noted {
    const CallTrace* owner = nullptr;
    DWORD thread = 0;
    std::vector<std::string> calls;
    const ImportHook* write = nullptr;
    const ImportHook* report = nullptr;
    const ImportHook* post = nullptr;
};
Noted g_noted;

void Note(std::string call) {
    if (GetCurrentThreadId() == g_noted.thread) {
        g_noted.calls.push_back(std::move(call));
    }
}

LSTATUS WINAPI Write(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    const std::string value = type == REG_DWORD ? std::to_string(*reinterpret_cast<const int*>(data))
                                                : suite::ToUtf8(reinterpret_cast<const wchar_t*>(data));
    Note(suite::ToUtf8(name ? name : L"") + "=" + value);
    return g_noted.write->Original<decltype(&RegSetValueExW)>()(key, name, reserved, type, data, size);
}

// As a member function of EventDataReport.
bool GetMsg(EventDataReport* self, std::string& message, const std::string& eventId, const std::string& text) {
    Note("report " + text);
    return g_noted.report->Original<decltype(&GetMsg)>()(self, message, eventId, text);
}

// As a member function of IPCMessageClient.
bool Post(IPCMessageClient* self, const TagIPCMessageItem& item) {
    const std::int32_t code = item.slot[ServiceMessages::kMessageCode];
    Note(code == Protocol::kSettingsChangedCode ? "ping"
         : code == Protocol::kSwitchStateCode   ? "switch state"
                                                : "message " + std::to_string(code));
    return g_noted.post->Original<decltype(&Post)>()(self, item);
}

void WINAPI Wait(DWORD timeMs) {
    Note("wait " + std::to_string(timeMs));
}

}  // namespace

CallTrace::CallTrace()
    : write_(GetModuleHandleW(L"QxRegistry.dll"), "RegSetValueExW", &Write),
      report_(nullptr, "EventDataReport6GetMsg", &GetMsg),
      post_(nullptr, "IPCMessageClient14PostIPCMessage", &Post),
      sleep_(nullptr, "Sleep", &Wait) {
    EXPECT_EQ(g_noted.owner, nullptr) << "one at a time";
    g_noted = {this, GetCurrentThreadId(), {}, &write_, &report_, &post_};
}

CallTrace::~CallTrace() {
    g_noted = {};
}

std::vector<std::string> CallTrace::Take() {
    return std::exchange(g_noted.calls, {});
}

}  // namespace harness
