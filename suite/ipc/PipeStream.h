#pragma once
// One end of a connected pipe in byte mode: at most one read and one write under way, neither ever waited for.
//
// Why: client and server both need overlapped reads and writes that outlive no buffer. This class owns the handle,
// the buffers and the events; who uses it waits for the events together with its own, with its own deadlines.
// Threads: one; the thread that starts a read or write must not end before the stream is destroyed.
#include <windows.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "suite/common/Handle.h"

namespace suite {

class PipeStream {
  public:
    // `pipe`: connected, opened with FILE_FLAG_OVERLAPPED.
    explicit PipeStream(Handle pipe);
    // Cancels what is under way, waits until the system has let go of the buffers, closes the pipe.
    ~PipeStream();
    PipeStream(const PipeStream&) = delete;
    PipeStream& operator=(const PipeStream&) = delete;

    // False when the events cannot be made; nothing else may then be called.
    bool Valid() const { return read_.event && write_.event; }

    // Signalled while a started read or write is complete and not yet finished. Borrowed; live as long as the stream.
    HANDLE ReadEvent() const { return read_.event.Get(); }
    HANDLE WriteEvent() const { return write_.event.Get(); }
    bool Reading() const { return read_.active; }
    bool Writing() const { return write_.active; }

    // False: the connection is gone, see LastError. REQUIRES: no read, or write, is under way.
    [[nodiscard]] bool StartRead();
    [[nodiscard]] bool StartWrite(std::vector<std::uint8_t> bytes);
    // What was read, valid until the next StartRead; possibly no byte at all. Nothing: the connection is gone.
    // REQUIRES: ReadEvent is signalled.
    std::optional<std::span<const std::uint8_t>> FinishRead();
    // False: the connection is gone. REQUIRES: WriteEvent is signalled.
    [[nodiscard]] bool FinishWrite();

    DWORD LastError() const { return lastError_; }
    HANDLE Pipe() const { return pipe_.Get(); }

  private:
    struct Operation {
        OVERLAPPED overlapped{};
        Handle event;
        bool active = false;
    };

    bool Begin(Operation& operation, BOOL succeeded);
    bool Finish(Operation& operation, DWORD& count);
    void Abandon(Operation& operation);

    Handle pipe_;
    Operation read_;
    Operation write_;
    std::array<std::uint8_t, 16384> input_;
    std::vector<std::uint8_t> output_;
    DWORD lastError_ = ERROR_SUCCESS;
};

}  // namespace suite
