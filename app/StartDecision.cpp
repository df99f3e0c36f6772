#include "app/StartDecision.h"

StartWindow ChooseStartWindow(const StartSettings& settings) {
    if (settings.filterDriverInstall != 1) {
        return StartWindow::kDriverBrokenMessage;
    }
    if (settings.initAlgorithm == 0) {
        return StartWindow::kFunctionUnavailableMessage;
    }
    return StartWindow::kSettings;
}

bool IsRunCommand(const std::wstring& commandLine) {
    return commandLine == L"run";
}
