// PipeRelay PIPE: makes the pipe, takes one client, and passes bytes from it to standard output and from standard input
// to it until either side ends. Knows nothing of frames.
//
// Why: a program outside of Wine, in any language, can then be the pipe's server.
#include <windows.h>

#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "suite/common/Handle.h"
#include "suite/ipc/PipeStream.h"

namespace {

constexpr DWORD kBufferSize = 64 * 1024;

struct Input {
    std::mutex mutex;
    std::vector<std::uint8_t> bytes;  // guarded by mutex
    bool ended = false;               // guarded by mutex
    suite::Handle arrived{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

void ReadInput(Input& input) {
    std::uint8_t buffer[4096];
    DWORD count = 0;
    const HANDLE source = GetStdHandle(STD_INPUT_HANDLE);
    while (ReadFile(source, buffer, sizeof buffer, &count, nullptr) && count > 0) {
        const std::lock_guard lock(input.mutex);
        input.bytes.insert(input.bytes.end(), buffer, buffer + count);
        SetEvent(input.arrived.Get());
    }
    const std::lock_guard lock(input.mutex);
    input.ended = true;
    SetEvent(input.arrived.Get());
}

// Waits for a client; false when the pipe cannot be had.
bool Accept(HANDLE pipe) {
    const suite::Handle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    OVERLAPPED overlapped{};
    overlapped.hEvent = event.Get();
    if (ConnectNamedPipe(pipe, &overlapped) || GetLastError() == ERROR_PIPE_CONNECTED) {
        return true;
    }
    DWORD unused = 0;
    return GetLastError() == ERROR_IO_PENDING && GetOverlappedResult(pipe, &overlapped, &unused, TRUE);
}

// False when the relay is to end.
bool PassInput(Input& input, suite::PipeStream& stream) {
    if (stream.Writing()) {
        return true;
    }
    std::vector<std::uint8_t> bytes;
    {
        const std::lock_guard lock(input.mutex);
        if (input.bytes.empty()) {
            return !input.ended;
        }
        bytes.swap(input.bytes);
    }
    return stream.StartWrite(std::move(bytes));
}

bool PassOutput(suite::PipeStream& stream) {
    const auto bytes = stream.FinishRead();
    DWORD written = 0;
    return bytes &&
           WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes->data(), static_cast<DWORD>(bytes->size()), &written,
                     nullptr) &&
           stream.StartRead();
}

void Relay(suite::PipeStream& stream, Input& input) {
    bool running = stream.StartRead();
    while (running && PassInput(input, stream)) {
        const HANDLE events[] = {stream.ReadEvent(), stream.WriteEvent(), input.arrived.Get()};
        switch (WaitForMultipleObjects(3, events, FALSE, INFINITE)) {
            case WAIT_OBJECT_0:
                running = PassOutput(stream);
                break;
            case WAIT_OBJECT_0 + 1:
                running = stream.FinishWrite();
                break;
            default:
                break;
        }
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 2) {
        std::fputs("PipeRelay PIPE\n", stderr);
        return 2;
    }
    suite::Handle pipe(CreateNamedPipeW(argv[1], PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT, 1, kBufferSize, kBufferSize, 0,
                                        nullptr));
    if (!pipe || !Accept(pipe.Get())) {
        return 1;
    }
    // Left behind at exit, since nothing ends its read.
    static Input input;
    std::thread([] { ReadInput(input); }).detach();
    suite::PipeStream stream(std::move(pipe));
    Relay(stream, input);
    return 0;
}
