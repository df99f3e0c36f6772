#pragma once
// The connection behind IPCMessageClient: finds the server, says hello, writes what is queued, reads and delivers.
//
// Why: one thread of its own does all reading and writing, so that no server can make a caller wait. A caller that
// posts may open the pipe itself, since opening a local pipe never waits; the thread takes over from there.
// Overlapped I/O only. The server may know who the client is but not act in its name (SECURITY_IDENTIFICATION), and
// before anything is said or read it has to be one that may be believed (PipeServerTrust.h); another one is told once
// and left alone like one that misbehaves.
// Threads: Post from any thread; Start and Stop from the owner's thread, once each; the rest is the link's own.
#include <windows.h>

#include <bitset>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "suite/common/Handle.h"
#include "suite/ipc/CallbackTable.h"
#include "suite/ipc/FrameQueue.h"
#include "suite/ipc/PipeFrame.h"
#include "suite/ipc/PipeStream.h"
#include "suite/ipc/RetrySchedule.h"

namespace suite {

class PipeLink {
  public:
    // What is begun, one write or the reading of one frame, has to be through after this time, else the connection is
    // dropped.
    static constexpr RetrySchedule::TimeMs kFrameDeadlineMs = 2000;
    // How long Stop lets a server take what is still queued.
    static constexpr RetrySchedule::TimeMs kDrainDeadlineMs = 250;

    // `callbacks`: borrowed; must outlive the link.
    PipeLink(std::int32_t clientId, bool autoReconnect, std::wstring pipeName, CallbackTable& callbacks);

    // Tries the pipe once and starts the thread. False when the system has no thread or event left.
    [[nodiscard]] bool Start();
    // Ends the thread after at most kDrainDeadlineMs and the callback that may be running.
    void Stop();
    bool Post(const TagIPCMessageItem& item);

  private:
    using TimeMs = RetrySchedule::TimeMs;

    enum class Opening { kOpened, kAbsent, kStranger };
    enum class Ending { kStopped, kLost, kNotRead, kRefused, kHalfFrame };

    static unsigned __stdcall ThreadEntry(void* link);
    void Run();
    Opening OpenPipe();
    bool BelievesServer(HANDLE pipe);
    Handle WaitForPipe();
    void Serve(Handle pipe);
    Ending Exchange(PipeStream& stream);
    Ending DeliverRest(PipeStream& stream, PipeFrame::Decoder& decoder);
    std::optional<Ending> DeliverInput(PipeStream& stream, PipeFrame::Decoder& decoder, TimeMs& frameDeadline);
    std::vector<std::uint8_t> TakeFrames(bool& stopping);
    bool Stopping();
    void Tell(Ending ending, DWORD error);

    // Constant after Start.
    const std::int32_t clientId_;
    const bool autoReconnect_;
    const std::wstring pipeName_;
    CallbackTable& callbacks_;
    Handle wake_;  // automatic reset: something was queued or opened, or the thread is to end
    Handle thread_;

    std::mutex mutex_;
    // Guarded by mutex_.
    bool connected_ = false;  // opened_ is set or the thread serves a pipe
    bool stopping_ = false;
    Handle opened_;  // waits for the thread to take it
    FrameQueue queue_;
    RetrySchedule schedule_;
    bool openFailureTold_ = false;
    bool strangerTold_ = false;

    // The link's thread.
    const wchar_t* refusalText_ = L"";
    std::bitset<5> told_;  // by Ending: what the log knows of since the last connection that lasted
};

}  // namespace suite
