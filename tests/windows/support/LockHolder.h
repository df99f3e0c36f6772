#pragma once
// Holds the lock of a file that several processes append to, on a thread of its own, while it lives: as a program does
// that was stopped while it wrote. Thread: the test's.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <future>
#include <thread>

#include "suite/common/Handle.h"
#include "suite/common/SharedAppendFile.h"

class LockHolder {
  public:
    explicit LockHolder(const std::filesystem::path& file)
        : mutex_(CreateMutexW(nullptr, FALSE, suite::SharedAppendFile::MutexName(file.wstring()).c_str())) {
        std::promise<bool> held;
        thread_ = std::thread([&held, this] {
            held.set_value(WaitForSingleObject(mutex_.Get(), 5000) == WAIT_OBJECT_0);
            WaitForSingleObject(done_.Get(), INFINITE);
            ReleaseMutex(mutex_.Get());
        });
        EXPECT_TRUE(held.get_future().get());
    }
    ~LockHolder() {
        SetEvent(done_.Get());
        thread_.join();
    }
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

  private:
    const suite::Handle done_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const suite::Handle mutex_;
    std::thread thread_;
};
