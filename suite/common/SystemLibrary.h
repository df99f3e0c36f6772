#pragma once
// A library of the operating system that is loaded when it is first needed, and its functions by their types.
//
// Why: what the window does not need would cost time at each start, and not every system has it; the linker's import of
// a missing library ends the program before its first line. It is loaded from the system's folder only, so a file of
// its name beside the program or in the current folder is never looked at, and it stays loaded until the process ends:
// threads of its own may run in it. What is missing is told by one line of the log, with its name, and is an ordinary
// error to whoever calls. A function is asked for at each call, which takes less than a microsecond. Any thread.
#include <windows.h>

#include <mutex>
#include <type_traits>

namespace suite {

class SystemLibrary {
  public:
    // `name`: the file's name with its extension; borrowed, must outlive this.
    explicit constexpr SystemLibrary(const wchar_t* name) : name_(name) {}
    SystemLibrary(const SystemLibrary&) = delete;
    SystemLibrary& operator=(const SystemLibrary&) = delete;

    // Loads it at the first call. ERROR_SUCCESS, or why it cannot be loaded.
    DWORD Load();
    const wchar_t* Name() const { return name_; }

  private:
    template <typename Pointer>
    friend class SystemFunction;

    // Null when the library or the function is missing; `error` then is that of the system.
    FARPROC Find(const char* function, DWORD& error);
    void TellMissing(const char* function, DWORD error) const;

    const wchar_t* const name_;
    std::once_flag once_;
    // Constant after `once_`.
    HMODULE library_ = nullptr;
    DWORD error_ = ERROR_SUCCESS;
};

template <typename Pointer>
class SystemFunction;

// Its type is that of the function's declaration: SystemFunction<decltype(&MFStartup)>.
template <typename Result, typename... Parameters>
class SystemFunction<Result(WINAPI*)(Parameters...)> {
  public:
    using Pointer = Result(WINAPI*)(Parameters...);

    // Both are borrowed and must outlive this.
    constexpr SystemFunction(SystemLibrary& library, const char* name) : library_(library), name_(name) {}
    SystemFunction(const SystemFunction&) = delete;
    SystemFunction& operator=(const SystemFunction&) = delete;

    // Null when the function or its library is missing.
    Pointer Get() {
        DWORD error = ERROR_SUCCESS;
        return Find(error);
    }

    // Calls it; where it is missing the result is `missing`.
    template <typename Missing>
    requires std::is_convertible_v<Missing, Result> Result CallOr(Missing missing, Parameters... parameters) {
        const Pointer function = Get();
        return function ? function(parameters...) : static_cast<Result>(missing);
    }

    // Calls it; what is missing is a failure like any other.
    HRESULT operator()(Parameters... parameters) requires std::is_same_v<Result, HRESULT> {
        DWORD error = ERROR_SUCCESS;
        const Pointer function = Find(error);
        return function ? function(parameters...) : HRESULT_FROM_WIN32(error);
    }

    SystemLibrary& Library() const { return library_; }
    const char* Name() const { return name_; }

  private:
    Pointer Find(DWORD& error) {
        const FARPROC found = library_.Find(name_, error);
        if (!found) {
            std::call_once(told_, [&] { library_.TellMissing(name_, error); });
        }
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(found));
    }

    SystemLibrary& library_;
    const char* const name_;
    std::once_flag told_;
};

}  // namespace suite
