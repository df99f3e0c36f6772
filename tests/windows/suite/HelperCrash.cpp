#include <windows.h>

#include <dbghelp.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <exception>
#include <map>
#include <optional>
#include <stdexcept>
#include <thread>

#include "suite/common/LocalFolder.h"
#include "suite/crashdump/CrashRegistration.h"
#include "suite/logger/QxLogger.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/suite/HelperCommands.h"

namespace {

// Read at run time, so that the compiler does not see what comes of it.
volatile ULONG_PTR badAddress = 16;

void AccessViolation() {
    *reinterpret_cast<volatile int*>(badAddress) = 1;
}

void IllegalInstruction() {
    __builtin_trap();
}

int Recurse(const volatile char* callersFrame);
int (*volatile recurse)(const volatile char*) = Recurse;

int Recurse(const volatile char* callersFrame) {
    volatile char frame[1024];
    frame[0] = callersFrame[0];
    return recurse(frame) + frame[0];
}

void StackOverflow() {
    const volatile char first = 1;
    recurse(&first);
}

void Throw() {
    throw std::runtime_error("thrown on purpose");
}

void ThrowInt() {
    throw 5;
}

void RaiseOwnCode() {
    RaiseException(0xE0001234, 0, 0, nullptr);
}

void CrashOnTwoThreads() {
    std::thread other(AccessViolation);
    AccessViolation();
    other.join();
}

const std::map<std::wstring, void (*)()> kCrashes = {
    {L"access", AccessViolation}, {L"illegal", IllegalInstruction},
    {L"overflow", StackOverflow}, {L"throw", Throw},
    {L"throw-int", ThrowInt},     {L"abort", std::abort},
    {L"own-code", RaiseOwnCode},  {L"two-threads", CrashOnTwoThreads},
    {L"nothing", [] {}},
};

// As a program does it: the library is found at run time and let go at the end.
HMODULE LoadAndRegister(bool enable, const std::wstring& product) {
    std::wstring path = suite::ProgramPath();
    path.replace(path.find_last_of(L'\\') + 1, std::wstring::npos, L"QxCrashDump.dll");
    const HMODULE library = LoadLibraryW(path.c_str());
    const auto registerHandler = reinterpret_cast<RegisterAppCrashHandlerFunction>(
        reinterpret_cast<void*>(GetProcAddress(library, "RegisterAppCrashHandler")));
    if (registerHandler == nullptr) {
        std::exit(1);
    }
    CrashRegistration record;
    record.appName = L"QUILLON";
    record.productName = product;
    registerHandler(nullptr);
    registerHandler(&record);
    if (enable) {
        record.enableFlag = 1;
        registerHandler(&record);
        registerHandler(&record);  // does nothing
    }
    return library;
}

LONG WINAPI OtherFilter(EXCEPTION_POINTERS* exception) {
    constexpr DWORD kThrowOfTheRuntime = 0x20474343;
    if (exception->ExceptionRecord->ExceptionCode == kThrowOfTheRuntime) {
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    std::_Exit(91);
}

// A disk that is full before the dump is whole.
BOOL WINAPI WriteHalfADump(HANDLE, DWORD, HANDLE file, MINIDUMP_TYPE, PMINIDUMP_EXCEPTION_INFORMATION,
                           PMINIDUMP_USER_STREAM_INFORMATION, PMINIDUMP_CALLBACK_INFORMATION) {
    DWORD written = 0;
    WriteFile(file, "MDMP", 4, &written, nullptr);
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

FARPROC WINAPI FindOnAFullDisk(HMODULE library, const char* function) {
    return std::strcmp(function, "MiniDumpWriteDump") == 0
               ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&WriteHalfADump))
               : GetProcAddress(library, function);
}

// What the thread that writes the dump does meanwhile.
void (*crashOfWriter)() = nullptr;

BOOL WINAPI CrashWhileWriting(HANDLE, DWORD, HANDLE, MINIDUMP_TYPE, PMINIDUMP_EXCEPTION_INFORMATION,
                              PMINIDUMP_USER_STREAM_INFORMATION, PMINIDUMP_CALLBACK_INFORMATION) {
    crashOfWriter();
    return FALSE;
}

FARPROC WINAPI FindWhatCrashes(HMODULE library, const char* function) {
    return std::strcmp(function, "MiniDumpWriteDump") == 0
               ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&CrashWhileWriting))
               : GetProcAddress(library, function);
}

HANDLE WINAPI RefuseFile(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

void SetOtherHandlers() {
    SetUnhandledExceptionFilter(&OtherFilter);
    std::set_terminate([] { std::_Exit(92); });
    std::signal(SIGABRT, [](int) { std::_Exit(93); });
}

}  // namespace

// Ends with 7 when the kind is no crash.
int Crash(const Arguments& arguments) {
    std::optional<harness::ImportHook> fault;
    const auto crash = kCrashes.at(arguments.at(1));
    const std::wstring& how = arguments.at(2);
    if (how == L"others") {
        SetOtherHandlers();
    }
    if (how != L"plain") {
        const std::wstring product = arguments.size() > 3 ? arguments[3] : L"QUILLON";
        const HMODULE library = LoadAndRegister(how != L"disabled", product);
        if (how == L"unloaded") {
            FreeLibrary(library);
        } else if (how == L"full") {
            fault.emplace(library, "GetProcAddress", &FindOnAFullDisk);
        } else if (how.starts_with(L"writer-")) {
            crashOfWriter = kCrashes.at(how.substr(std::wcslen(L"writer-")));
            fault.emplace(library, "GetProcAddress", &FindWhatCrashes);
        } else if (how == L"refused") {
            fault.emplace(library, "CreateFileW", &RefuseFile);
        }
    }
    if (how != L"early") {
        QxLogger::GetInstance()->InitProcessLogger();
    }
    LogLine(3, L"Crash", L"before");
    if (how == L"thread") {
        std::thread(crash).join();
    } else if (how == L"raw-thread") {
        // As one of the system's pool: nothing of the language's runtime stands around it.
        const auto run = [](void* work) -> DWORD {
            reinterpret_cast<void (*)()>(work)();
            return 0;
        };
        WaitForSingleObject(CreateThread(nullptr, 0, run, reinterpret_cast<void*>(crash), 0, nullptr), INFINITE);
    } else {
        crash();
    }
    return 7;
}
