// The export "RegisterAppCrashHandler": hangs into every way in which a program of this toolchain can crash, has the
// dump written, and then lets the handler that was there before do its part, so that the program ends as it would have
// ended without this library.
#include <windows.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "suite/crashdump/CrashRegistration.h"
#include "suite/crashdump/DumpFolder.h"
#include "suite/crashdump/DumpWriter.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr const wchar_t* kFunction = L"RegisterAppCrashHandler";

// The compiler's runtime raises this code for each throw. Unhandled, it must go back to the runtime, which then calls
// std::terminate.
constexpr DWORD kThrowOfThisRuntime = 0x20474343;
constexpr ULONG kStackForHandlerBytes = 32 * 1024;
constexpr ULONG kPageBytes = 4096;

// Set while the handler is registered; constant afterwards.
std::atomic<suite::DumpWriter*> theWriter{nullptr};
LPTOP_LEVEL_EXCEPTION_FILTER previousFilter = nullptr;
std::terminate_handler previousTerminate = nullptr;
using SignalHandler = void (*)(int);
SignalHandler previousAbort = SIG_DFL;

// Every thread keeps a little stack back, so that the filter can run when the rest has overflowed. A system that
// commits the whole stack at once (Wine) has its guard page at the very end whatever was asked for; there the one set
// here is the first to be met. Elsewhere that page is not committed yet, and setting it changes nothing.
void KeepStackBack() {
    ULONG guarantee = kStackForHandlerBytes;
    SetThreadStackGuarantee(&guarantee);
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    DWORD before = 0;
    if (high - low > 2 * kStackForHandlerBytes) {
        VirtualProtect(reinterpret_cast<void*>(low + kStackForHandlerBytes), kPageBytes, PAGE_READWRITE | PAGE_GUARD,
                       &before);
    }
}

// For crashes that are no exception of the system: shows the caller's stack in the dump.
void DumpHere(DWORD code, const wchar_t* reason) {
    CONTEXT context{};
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    EXCEPTION_POINTERS pointers{&record, &context};
    theWriter.load()->WriteOnce(&pointers, reason);
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    if (theWriter.load()->IsOwnThread()) {
        theWriter.load()->GiveUp();
    }
    if (exception->ExceptionRecord->ExceptionCode != kThrowOfThisRuntime) {
        theWriter.load()->WriteOnce(exception, L"unhandled exception");
    } else if (!previousFilter) {
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    return previousFilter ? previousFilter(exception) : EXCEPTION_CONTINUE_SEARCH;
}

// "std::terminate", with what the exception tells if there is one.
std::wstring TerminateReason() {
    std::wstring reason = L"std::terminate";
    try {
        if (const std::exception_ptr exception = std::current_exception()) {
            std::rethrow_exception(exception);
        }
    } catch (const std::exception& exception) {
        reason += L", uncaught exception: " + suite::FromUtf8(exception.what());
    } catch (...) {
        reason += L", uncaught exception of another type";
    }
    return reason;
}

[[noreturn]] void OnTerminate() {
    if (theWriter.load()->IsOwnThread()) {
        theWriter.load()->GiveUp();
    }
    static std::wstring reason;
    static std::atomic<bool> described{false};
    if (!described.exchange(true)) {
        try {
            reason = TerminateReason();
        } catch (...) {
            reason.clear();
        }
        DumpHere(static_cast<DWORD>(STATUS_FATAL_APP_EXIT), reason.c_str());
    }
    if (previousTerminate) {
        previousTerminate();
    }
    std::abort();
}

void OnAbort(int number) {
    if (theWriter.load()->IsOwnThread()) {
        theWriter.load()->GiveUp();
    }
    DumpHere(static_cast<DWORD>(STATUS_FATAL_APP_EXIT), L"abort");
    if (previousAbort != SIG_DFL && previousAbort != SIG_IGN && previousAbort != SIG_ERR) {
        previousAbort(number);
    }
}

void Register(const CrashRegistration& record) {
    const std::wstring folder = suite::MakeDumpFolder(record.productName);
    if (folder.empty()) {
        LogLine(LogLevel::kError, kFunction, L"no folder for crash dumps");
    }
    // The handlers stay for good, so the code must, whoever unloads the library.
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(&OnUnhandledException), &self)) {
        LogLine(LogLevel::kError, kFunction, L"the library cannot be kept: ", GetLastError());
        return;
    }
    theWriter = suite::DumpWriter::Start(folder, suite::ProgramName());
    if (!theWriter.load()) {
        LogLine(LogLevel::kError, kFunction, L"no thread for crash dumps: ", GetLastError());
        return;
    }
    KeepStackBack();
    previousFilter = SetUnhandledExceptionFilter(&OnUnhandledException);
    previousTerminate = std::set_terminate(&OnTerminate);
    previousAbort = std::signal(SIGABRT, &OnAbort);
}

}  // namespace

extern "C" __declspec(dllexport) void __cdecl RegisterAppCrashHandler(const CrashRegistration* record) {
    static std::atomic<bool> registered{false};
    if (!record || record->enableFlag == 0 || registered.exchange(true)) {
        return;
    }
    try {
        Register(*record);
    } catch (...) {
        LogLine(LogLevel::kError, kFunction, L"out of memory");
    }
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    if (reason == DLL_THREAD_ATTACH && theWriter.load()) {
        KeepStackBack();
    }
    return TRUE;
}
