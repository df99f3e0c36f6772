// Servers that another user of the machine has started: what the system tells of them is a double's word.
#include <windows.h>

#include <sddl.h>

#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "suite/common/UserSid.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/ipc/IpcTest.h"
#include "tests/windows/ipc/RawPipe.h"
#include "tests/windows/ipc/SkippedWaits.h"
#include "tools/service/PipeServer.h"

namespace {

using Kind = ServerEvent::Kind;

constexpr wchar_t kOther[] = L"S-1-5-21-7-7-7-1002";
constexpr char kLine[] = "the pipe's server may be anybody's, it is not listened to; owner and user: ";

// What the system says of the server's pipe and process, to the client's library only. By the rules of Windows: a pipe
// has an owner, and a process that may not be looked at cannot be opened.
struct Said {
    std::wstring pipeOwner;
    std::wstring processUser;  // empty: the process may not be opened
    bool administrator = false;
};

class ServerSays {
  public:
    explicit ServerSays(Said said) {
        said_ = std::move(said);
        current_ = this;
    }
    ~ServerSays() { current_ = nullptr; }

  private:
    struct LocalFreeDeleter {
        void operator()(void* memory) const { LocalFree(memory); }
    };

    static BOOL WINAPI PipeSecurity(HANDLE, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR out, DWORD size, DWORD* needed) {
        PSECURITY_DESCRIPTOR made = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW((L"O:" + said_.pipeOwner).c_str(), SDDL_REVISION_1, &made,
                                                             needed);
        const std::unique_ptr<void, LocalFreeDeleter> owned(made);
        if (!made || size < *needed) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        std::memcpy(out, made, *needed);
        return TRUE;
    }
    static HANDLE WINAPI Open(DWORD access, BOOL inherit, DWORD id) {
        EXPECT_EQ(access, DWORD{PROCESS_QUERY_LIMITED_INFORMATION}) << "more is not given to users";
        EXPECT_EQ(id, GetCurrentProcessId()) << "the server's process";
        if (said_.processUser.empty()) {
            SetLastError(ERROR_ACCESS_DENIED);
            return nullptr;
        }
        return current_->open_.Original<decltype(&OpenProcess)>()(access, inherit, id);
    }
    static BOOL WINAPI OpenToken(HANDLE process, DWORD access, PHANDLE token) {
        const BOOL opened = current_->openToken_.Original<decltype(&OpenProcessToken)>()(process, access, token);
        if (process != GetCurrentProcess()) {
            serverToken_ = *token;
        } else if (serverToken_ == *token) {
            serverToken_ = nullptr;  // closed, and the number given again
        }
        return opened;
    }
    static BOOL WINAPI TokenFact(HANDLE token, TOKEN_INFORMATION_CLASS kind, void* out, DWORD size, DWORD* needed) {
        if (token != serverToken_ || (kind != TokenUser && kind != TokenGroups)) {
            return current_->tokenFact_.Original<decltype(&GetTokenInformation)>()(token, kind, out, size, needed);
        }
        PSID sid = nullptr;
        ConvertStringSidToSidW(kind == TokenUser ? said_.processUser.c_str() : L"S-1-5-32-544", &sid);
        const std::unique_ptr<void, LocalFreeDeleter> owned(sid);
        // The rights of an administrator who has not been asked for consent are taken away.
        TOKEN_GROUPS fact{1,
                          {{sid, said_.administrator ? DWORD{SE_GROUP_ENABLED} : DWORD{SE_GROUP_USE_FOR_DENY_ONLY}}}};
        const DWORD sidSize = GetLengthSid(sid);
        *needed = sizeof(fact) + sidSize;
        if (size < *needed) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        auto* const bytes = static_cast<BYTE*>(out);
        std::memcpy(bytes + sizeof(fact), sid, sidSize);
        fact.Groups[0].Sid = bytes + sizeof(fact);
        if (kind == TokenUser) {
            const TOKEN_USER user{fact.Groups[0]};
            std::memcpy(bytes, &user, sizeof(user));
        } else {
            std::memcpy(bytes, &fact, sizeof(fact));
        }
        return TRUE;
    }

    static inline ServerSays* current_ = nullptr;
    static inline Said said_;
    static inline HANDLE serverToken_ = nullptr;

    const HMODULE library_ = GetModuleHandleW(L"QxIpc.dll");
    const harness::ImportHook security_{library_, "GetKernelObjectSecurity", &PipeSecurity};
    const harness::ImportHook open_{library_, "OpenProcess", &Open};
    const harness::ImportHook openToken_{library_, "OpenProcessToken", &OpenToken};
    const harness::ImportHook tokenFact_{library_, "GetTokenInformation", &TokenFact};
};

class ServerTrustTest : public IpcTest {
  protected:
    // A server that says something as soon as somebody is there: whether the client listens to it.
    bool ListensTo(const Said& said) {
        const ServerSays says(said);
        RawPipe server(PipeName());
        Inbox inbox;
        IPCMessageClient client(1, true, false, PipeName());
        client.RegisterMessageCallback(5, inbox.Callback());
        if (!server.Accept()) {
            return false;
        }
        const bool wrote = server.Write(*PipeFrame::EncodeMessage(Message(5)));
        const bool posted = client.PostIPCMessage(Ping());
        const bool greeted = server.Read(PipeFrame::kHelloSize).size() == PipeFrame::kHelloSize;
        EXPECT_EQ(posted, greeted);
        if (!greeted) {
            EXPECT_TRUE(inbox.Messages().empty()) << "a byte of it was believed";
            return false;
        }
        return wrote && inbox.WaitFor(1);
    }
};

TEST_F(ServerTrustTest, ServicesAndTheSameUserAreListenedTo) {
    const std::wstring self = suite::OwnUserSid();
    ASSERT_FALSE(self.empty());
    EXPECT_TRUE(ListensTo({L"S-1-5-18", L""})) << "a service, whose process a user may not look at";
    EXPECT_TRUE(ListensTo({L"S-1-5-80-1-2-3-4-5", L"S-1-5-80-1-2-3-4-5"}));
    EXPECT_TRUE(ListensTo({self, self}));
    EXPECT_TRUE(ListensTo({L"S-1-5-32-544", kOther, true}));
}

TEST_F(ServerTrustTest, AnotherUsersServerIsNot) {
    Expect(kLine);
    EXPECT_FALSE(ListensTo({kOther, L""}));
    EXPECT_EQ(LinesWith(std::string(kLine) + "S-1-5-21-7-7-7-1002, (IPCMessageClient::BelievesServer)"), 1);
}

TEST_F(ServerTrustTest, NeitherIsAnotherUsersProcessBehindAServicesPipe) {
    Expect(kLine);
    EXPECT_FALSE(ListensTo({L"S-1-5-18", kOther}));
    EXPECT_EQ(LinesWith(std::string(kLine) + "S-1-5-18, S-1-5-21-7-7-7-1002(IPCMessageClient::BelievesServer)"), 1);
}

TEST_F(ServerTrustTest, NorAProcessThatTookTheNumberOfTheServers) {
    Expect(kLine);
    EXPECT_FALSE(ListensTo({kOther, L"S-1-5-18"}));
}

// The one after it is: by the schedule of servers that misbehave, and the log tells of the stranger once.
TEST_F(ServerTrustTest, AStrangerIsLeftAloneAndASoundServerFoundLater) {
    Expect(kLine);
    auto stranger = std::make_unique<RawPipe>(PipeName());
    std::optional<ServerSays> says;
    says.emplace(Said{kOther, L""});
    IPCMessageClient client(1, true, false, PipeName());
    EXPECT_TRUE(stranger->Accept());
    EXPECT_EQ(stranger->Read(1).size(), 0u);
    for (int i = 0; i < 20; ++i) {
        EXPECT_FALSE(client.PostIPCMessage(Ping())) << "a message does not make it try again at once";
    }
    stranger->Disconnect();
    EXPECT_TRUE(stranger->Accept()) << "it looks again by itself";
    EXPECT_EQ(stranger->Read(1).size(), 0u);
    stranger.reset();
    says.reset();
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
    EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
    EXPECT_EQ(LinesWith(kLine), 1);
}

// What can be opened again and again is a file, of which the doubles say the same.
TEST_F(ServerTrustTest, AStrangerIsLeftAloneForLongerAndLonger) {
    Expect(kLine);
    wchar_t folder[MAX_PATH]{};
    wchar_t file[MAX_PATH]{};
    GetTempPathW(MAX_PATH, folder);
    ASSERT_NE(GetTempFileNameW(folder, L"ipc", 0, file), 0u);
    {
        const ServerSays says({kOther, L""});
        const SkippedWaits waits(7);
        IPCMessageClient client(1, true, false, file);
        EXPECT_THAT(waits.UntilAtRest(), testing::ElementsAre(1000, 2000, 4000, 8000, 16000, 30000, 30000));
        EXPECT_EQ(waits.Tries(), 8);
        for (int i = 0; i < 20; ++i) {
            EXPECT_FALSE(client.PostIPCMessage(Ping()));
        }
        EXPECT_EQ(waits.Tries(), 8) << "a message does not make it try again";
    }
    DeleteFileW(file);
}

TEST_F(ServerTrustTest, WithoutAutomaticReconnectingAStrangerIsRefusedToo) {
    Expect(kLine);
    const ServerSays says({kOther, L""});
    RawPipe server(PipeName());
    IPCMessageClient client(1, false, false, PipeName());
    EXPECT_TRUE(server.Accept());
    EXPECT_EQ(server.Read(1).size(), 0u);
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
}

}  // namespace
