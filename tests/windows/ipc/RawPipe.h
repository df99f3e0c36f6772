#pragma once
// The server's end of a pipe, one step at a time and byte by byte, with a deadline for each step.
//
// Why: it shares no code with the client, so it sees what really is on the wire, and it can stop anywhere.
// Threads: one.
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "suite/common/Handle.h"

class RawPipe {
  public:
    using Bytes = std::vector<std::uint8_t>;

    // Makes the pipe. `maxInstances`: how many of this name there may be.
    explicit RawPipe(const std::wstring& name, DWORD maxInstances = PIPE_UNLIMITED_INSTANCES);

    bool Valid() const { return static_cast<bool>(pipe_); }
    // A client has come before the deadline.
    bool Accept();
    // `count` bytes, or fewer when the connection ended or the deadline came.
    Bytes Read(std::size_t count);
    bool Write(const Bytes& bytes);
    // The client closes the connection before the deadline, whatever it still writes.
    bool WaitForEnd();
    // Lets the client go; Accept then takes the next one.
    void Disconnect() { DisconnectNamedPipe(pipe_.Get()); }
    void Close() { pipe_.Reset(); }

  private:
    // Waits for the operation that `overlapped_` stands for and cancels it at the deadline.
    bool Await(DWORD& count);
    void Begin();

    suite::Handle pipe_;
    suite::Handle event_;
    OVERLAPPED overlapped_{};
};
