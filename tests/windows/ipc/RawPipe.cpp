#include "tests/windows/ipc/RawPipe.h"

#include "tests/windows/ipc/IpcTest.h"

RawPipe::RawPipe(const std::wstring& name, DWORD maxInstances)
    : pipe_(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE | PIPE_WAIT,
                             maxInstances, 65536, 65536, 0, nullptr)),
      event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

bool RawPipe::Accept() {
    Begin();
    ConnectNamedPipe(pipe_.Get(), &overlapped_);
    // No data: it has gone already.
    if (GetLastError() == ERROR_PIPE_CONNECTED || GetLastError() == ERROR_NO_DATA) {
        return true;
    }
    DWORD count = 0;
    return GetLastError() == ERROR_IO_PENDING && Await(count);
}

RawPipe::Bytes RawPipe::Read(std::size_t count) {
    Bytes bytes(count);
    std::size_t have = 0;
    while (have < count) {
        Begin();
        DWORD part = 0;
        if (!ReadFile(pipe_.Get(), bytes.data() + have, static_cast<DWORD>(count - have), nullptr, &overlapped_) &&
            GetLastError() != ERROR_IO_PENDING) {
            break;
        }
        if (!Await(part)) {
            break;
        }
        have += part;
    }
    bytes.resize(have);
    return bytes;
}

bool RawPipe::Write(const Bytes& bytes) {
    Begin();
    DWORD count = 0;
    return (WriteFile(pipe_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &overlapped_) ||
            GetLastError() == ERROR_IO_PENDING) &&
           Await(count) && count == bytes.size();
}

bool RawPipe::WaitForEnd() {
    for (;;) {
        Begin();
        std::uint8_t byte = 0;
        DWORD count = 0;
        if (!ReadFile(pipe_.Get(), &byte, 1, nullptr, &overlapped_) && GetLastError() != ERROR_IO_PENDING) {
            return GetLastError() == ERROR_BROKEN_PIPE;
        }
        if (!Await(count)) {
            return GetLastError() == ERROR_BROKEN_PIPE;
        }
    }
}

void RawPipe::Begin() {
    overlapped_ = {};
    overlapped_.hEvent = event_.Get();
}

bool RawPipe::Await(DWORD& count) {
    if (WaitForSingleObject(event_.Get(), static_cast<DWORD>(kDeadline.count())) != WAIT_OBJECT_0) {
        CancelIoEx(pipe_.Get(), &overlapped_);
    }
    return GetOverlappedResult(pipe_.Get(), &overlapped_, &count, TRUE);
}
