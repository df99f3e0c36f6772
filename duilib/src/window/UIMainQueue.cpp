#include "DuiLib/UIMainQueue.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "suite/logger/QxLogger.h"

namespace DuiLib {
namespace {

constexpr wchar_t kClassName[] = L"DuiLib.MainQueue";
constexpr UINT kRunTask = WM_USER;     // one task is to be run
constexpr UINT kRearm = WM_USER + 1;   // a delayed task was added
constexpr UINT_PTR kDelayTimer = 1;    // the next delayed task is due
constexpr UINT_PTR kBreatheTimer = 2;  // tasks wait, but input goes first
constexpr UINT kBreatheMs = USER_TIMER_MINIMUM;

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       kClassName, &module);
    return module;
}

void Run(const std::function<void()>& task) {
    try {
        task();
    } catch (const std::exception& e) {
        LogLine(LogLevel::kError, L"UIMainQueue::Run", L"A task ended with an exception: ", e.what());
    } catch (...) {
        LogLine(LogLevel::kError, L"UIMainQueue::Run", L"A task ended with an exception");
    }
}

}  // namespace

class UIMainQueue::Impl {
  public:
    void Bind() {
        const std::scoped_lock lock(mutex_);
        const DWORD thread = GetCurrentThreadId();
        if (window_ && thread_ == thread && IsWindow(window_)) {
            return;
        }
        if (window_) {
            // A window ends only on its own thread; where that is gone, so is the window.
            PostMessageW(window_, WM_CLOSE, 0, 0);
        }
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = WindowProc;
        wc.hInstance = ThisModule();
        wc.lpszClassName = kClassName;
        RegisterClassExW(&wc);
        thread_ = thread;
        window_ = CreateWindowExW(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
        if (!window_) {
            LogLine(LogLevel::kError, L"UIMainQueue::bindToCurrentThread", L"No window, error code: ", GetLastError());
            return;
        }
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        posted_ = false;
        PostIfNeeded();
        PostMessageW(window_, kRearm, 0, 0);
    }

    void Dispatch(std::function<void()> task) {
        const std::scoped_lock lock(mutex_);
        tasks_.push_back(std::move(task));
        PostIfNeeded();
    }

    void DispatchAfter(unsigned delayMs, std::function<void()> task) {
        const std::scoped_lock lock(mutex_);
        delayed_.push_back({GetTickCount64() + delayMs, order_++, std::move(task)});
        std::push_heap(delayed_.begin(), delayed_.end());
        if (window_) {
            PostMessageW(window_, kRearm, 0, 0);  // a timer belongs to the thread of its window
        }
    }

  private:
    struct Delayed {
        ULONGLONG dueTick;
        unsigned long long order;  // of those that are due together, the first comes first
        std::function<void()> task;
        bool operator<(const Delayed& other) const {  // the heap's top is the earliest
            return std::pair(other.dueTick, other.order) < std::pair(dueTick, order);
        }
    };

    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        Impl* const queue = reinterpret_cast<Impl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (queue) {
            switch (message) {
                case kRunTask:
                    queue->RunOne(false);
                    return 0;
                case kRearm:
                    queue->Rearm(window);
                    return 0;
                case WM_TIMER:
                    KillTimer(window, wParam);
                    if (wParam == kBreatheTimer) {
                        queue->RunOne(true);
                    } else {
                        queue->MoveDue();
                        queue->Rearm(window);
                    }
                    return 0;
                default:
                    break;
            }
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    // One message is under way for all the tasks that wait: the message queue cannot overflow. Guarded by mutex_.
    void PostIfNeeded() {
        if (!posted_ && !tasks_.empty() && window_) {
            posted_ = PostMessageW(window_, kRunTask, 0, 0) != FALSE;
        }
    }

    void RunOne(bool afterInput) {
        std::function<void()> task;
        {
            const std::scoped_lock lock(mutex_);
            posted_ = false;
            if (tasks_.empty()) {
                return;
            }
            // Posted messages go before input, so where input waits the task is left to a timer, which comes after it.
            if (!afterInput && HIWORD(GetQueueStatus(QS_INPUT)) != 0) {
                posted_ = SetTimer(window_, kBreatheTimer, kBreatheMs, nullptr) != 0;
                if (posted_) {
                    return;
                }
            }
            task = std::move(tasks_.front());
            tasks_.pop_front();
            PostIfNeeded();  // before the task runs: it may open a modal window, whose loop goes on with the next
        }
        Run(task);
    }

    void MoveDue() {
        const std::scoped_lock lock(mutex_);
        const ULONGLONG now = GetTickCount64();
        while (!delayed_.empty() && delayed_.front().dueTick <= now) {
            std::pop_heap(delayed_.begin(), delayed_.end());
            tasks_.push_back(std::move(delayed_.back().task));
            delayed_.pop_back();
        }
        PostIfNeeded();
    }

    void Rearm(HWND window) {
        const std::scoped_lock lock(mutex_);
        if (delayed_.empty() || window != window_) {
            return;
        }
        const ULONGLONG now = GetTickCount64();
        const ULONGLONG due = delayed_.front().dueTick;
        const ULONGLONG waitMs = due > now ? std::min<ULONGLONG>(due - now, USER_TIMER_MAXIMUM) : 0;
        SetTimer(window, kDelayTimer, static_cast<UINT>(waitMs), nullptr);
    }

    std::mutex mutex_;
    // Guarded by mutex_.
    HWND window_ = nullptr;  // of the UI thread; receives messages only
    DWORD thread_ = 0;
    bool posted_ = false;  // kRunTask or kBreatheTimer is under way
    std::deque<std::function<void()>> tasks_;
    std::vector<Delayed> delayed_;  // a heap
    unsigned long long order_ = 0;
};

UIMainQueue::UIMainQueue() : impl_(std::make_unique<Impl>()) {}
UIMainQueue::~UIMainQueue() = default;

UIMainQueue* UIMainQueue::getInstance() {
    // Never destroyed: other threads may dispatch until the process ends, and what waits then is dropped.
    static UIMainQueue* const queue = new UIMainQueue();
    return queue;
}

void UIMainQueue::bindToCurrentThread() {
    impl_->Bind();
}

void UIMainQueue::dispatch(std::function<void()> task) {
    impl_->Dispatch(std::move(task));
}

void UIMainQueue::dispatchAfter(unsigned delayMs, std::function<void()> task) {
    impl_->DispatchAfter(delayMs, std::move(task));
}

}  // namespace DuiLib
