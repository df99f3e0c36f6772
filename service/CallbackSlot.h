#pragma once
// Holds one callback that a page gives to the model and takes back when it goes.
//
// Why: the status and reset observers are called on the pipe client's thread while the page that owns them may be
// replacing them on the UI thread. When Set returns, the callback before it does not run on another thread any more.
// Threads: any. REQUIRES: a callback never waits for a thread that may be inside Set, so it posts to the UI thread and
// does not send. A callback may call Set on its own slot.
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

template <typename Signature>
class CallbackSlot;

template <typename Result, typename... Arguments>
class CallbackSlot<Result(Arguments...)> {
  public:
    using Function = std::function<Result(Arguments...)>;

    // An empty function empties the slot.
    void Set(Function function) {
        auto next = function ? std::make_shared<Function>(std::move(function)) : nullptr;
        const std::scoped_lock lock(mutex_);
        function_.swap(next);
    }

    bool IsSet() const {
        const std::scoped_lock lock(mutex_);
        return function_ != nullptr;
    }

    // The callback's result; `ifEmpty` when there is no callback.
    template <typename Fallback>
    Result CallOr(Fallback ifEmpty, Arguments... arguments) const {
        const std::scoped_lock lock(mutex_);
        const std::shared_ptr<Function> function = function_;  // lives on when the callback replaces itself
        return function ? (*function)(std::move(arguments)...) : Result(ifEmpty);
    }

    // As CallOr for callbacks without a result: nothing happens when there is none.
    void Call(Arguments... arguments) const {
        const std::scoped_lock lock(mutex_);
        const std::shared_ptr<Function> function = function_;
        if (function) {
            (*function)(std::move(arguments)...);
        }
    }

  private:
    // Recursive, because a callback may call operations that use its slot again.
    mutable std::recursive_mutex mutex_;
    std::shared_ptr<Function> function_;  // guarded by mutex_; null when empty
};
