#include "app/StartUp.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "DuiLib/UICulture.h"
#include "app/CrashHandler.h"
#include "app/PixoraMutex.h"
#include "app/StartDecision.h"
#include "suite/logger/QxLogger.h"
#include "suite/registry/Registry.h"
#include "windows/PxDialogWnd.h"
#include "windows/PxMainWnd.h"

namespace {

constexpr wchar_t kSettingsKey[] = L"\\SOFTWARE\\Velmora\\Quillon\\LumiCamera";
// The entry point's own name, which the log lines of this file carry.
constexpr wchar_t kEntry[] = L"wWinMain";

StartSettings ReadStartSettings() {
    StartSettings settings;
    DE::Registry::GetValue(HKEY_CURRENT_USER, kSettingsKey, L"filter_driver_install", settings.filterDriverInstall,
                           KEY_ALL_ACCESS);
    DE::Registry::GetValue(HKEY_CURRENT_USER, kSettingsKey, L"init_algorithm", settings.initAlgorithm, KEY_ALL_ACCESS);
    return settings;
}

void RunSettingsWindow(HINSTANCE instance) {
    // Made before the single-instance test: its window class is what the other instance is found by.
    const std::unique_ptr<PxMainWnd> window(new (std::nothrow) PxMainWnd);
    if (!window) {
        LogLine(LogLevel::kInfo, kEntry, L"creat PxMainWnd is wrong");
        return;
    }
    if (PixoraMutex::GetInstance().IsAlreadyRunning()) {
        window->ActivateExisting();
    } else {
        window->Run(instance);
    }
}

struct DialogDeleter {
    void operator()(PxDialogWnd* dialog) const {
        dialog->~PxDialogWnd();
        ::operator delete(dialog);
    }
};

void RunMessageWindow(HINSTANCE instance, StartWindow kind) {
    void* memory = ::operator new(sizeof(PxDialogWnd), std::nothrow);
    if (!memory) {
        LogLine(LogLevel::kInfo, kEntry, L"creat PxDialog is wrong");
        return;
    }
    std::memset(memory, 0, sizeof(PxDialogWnd));
    const std::unique_ptr<PxDialogWnd, DialogDeleter> window(new (memory) PxDialogWnd);
    if (PixoraMutex::GetInstance().IsAlreadyRunning()) {
        window->ActivateExisting();
        return;
    }
    window->Run(instance);
    const DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    if (kind == StartWindow::kDriverBrokenMessage) {
        window->SetMessageText(culture.GetString(L"IDS_LUMI_DRIVER_BROKEN"));
    } else {
        window->UseHtmlMessage();
        window->SetMessageText(culture.GetString(L"IDS_LUMI_FUNCTION_UNAVAILABLE"));
    }
}

}  // namespace

bool IsCmdLineEnable(const wchar_t* cmdLine) {
    std::wstring command = cmdLine;
    if (command.empty()) {
        command = GetCommandLineW();
    }
    if (command.empty()) {
        LogLine(LogLevel::kInfo, L"IsCmdLineEnable", L"enter cmdLine is empty");
        return false;
    }
    return IsRunCommand(command);
}

void StartUp(HINSTANCE instance, const wchar_t* cmdLine) {
    static const std::uint32_t crashHandlerResult =
        CrashHandler::GetInstance().Register(true, false, L"QUILLON", 0, L"QUILLON");
    static_cast<void>(crashHandlerResult);
    QxLogger::GetInstance()->InitProcessLogger();

    if (!cmdLine || !IsCmdLineEnable(cmdLine)) {
        LogLine(LogLevel::kInfo, kEntry, L"enter cmdLine is wrong");
        return;
    }
    // An update that has to close the program starts it again; the system does so only for one that has run for a
    // while.
    RegisterApplicationRestart(L"run", RESTART_NO_CRASH | RESTART_NO_HANG);
    PixoraMutex::GetInstance();
    const StartWindow kind = ChooseStartWindow(ReadStartSettings());
    if (kind == StartWindow::kSettings) {
        RunSettingsWindow(instance);
    } else {
        RunMessageWindow(instance, kind);
    }
}
