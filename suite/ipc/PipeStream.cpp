#include "suite/ipc/PipeStream.h"

#include <utility>

namespace suite {

PipeStream::PipeStream(Handle pipe) : pipe_(std::move(pipe)) {
    // Manual reset, as overlapped operations need it.
    read_.event = Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    write_.event = Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

PipeStream::~PipeStream() {
    if (read_.active || write_.active) {
        CancelIoEx(pipe_.Get(), nullptr);
    }
    Abandon(read_);
    Abandon(write_);
}

bool PipeStream::StartRead() {
    read_.overlapped = {};
    read_.overlapped.hEvent = read_.event.Get();
    return Begin(read_,
                 ReadFile(pipe_.Get(), input_.data(), static_cast<DWORD>(input_.size()), nullptr, &read_.overlapped));
}

bool PipeStream::StartWrite(std::vector<std::uint8_t> bytes) {
    output_ = std::move(bytes);
    write_.overlapped = {};
    write_.overlapped.hEvent = write_.event.Get();
    return Begin(write_, WriteFile(pipe_.Get(), output_.data(), static_cast<DWORD>(output_.size()), nullptr,
                                   &write_.overlapped));
}

std::optional<std::span<const std::uint8_t>> PipeStream::FinishRead() {
    DWORD count = 0;
    if (!Finish(read_, count)) {
        return std::nullopt;
    }
    return std::span<const std::uint8_t>(input_.data(), count);
}

bool PipeStream::FinishWrite() {
    DWORD count = 0;
    if (!Finish(write_, count)) {
        return false;
    }
    if (count != output_.size()) {
        lastError_ = ERROR_WRITE_FAULT;
        return false;
    }
    return true;
}

bool PipeStream::Begin(Operation& operation, BOOL succeeded) {
    // An operation that completes at once signals its event all the same.
    operation.active = succeeded || GetLastError() == ERROR_IO_PENDING;
    if (!operation.active) {
        lastError_ = GetLastError();
        ResetEvent(operation.event.Get());
    }
    return operation.active;
}

bool PipeStream::Finish(Operation& operation, DWORD& count) {
    const BOOL succeeded = GetOverlappedResult(pipe_.Get(), &operation.overlapped, &count, FALSE);
    if (!succeeded) {
        lastError_ = GetLastError();
        if (lastError_ == ERROR_IO_INCOMPLETE) {
            return false;  // the system still owns the buffer
        }
    }
    operation.active = false;
    ResetEvent(operation.event.Get());
    return succeeded;
}

void PipeStream::Abandon(Operation& operation) {
    if (operation.active) {
        DWORD count = 0;
        GetOverlappedResult(pipe_.Get(), &operation.overlapped, &count, TRUE);
    }
}

}  // namespace suite
