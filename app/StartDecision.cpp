#include "app/StartDecision.h"

StartWindow ChooseStartWindow(const StartSettings& settings) {
    if (settings.filterDriverInstall != 1)
        return StartWindow::DriverBrokenMessage;
    if (settings.initAlgorithm == 0)
        return StartWindow::FunctionUnavailableMessage;
    return StartWindow::Settings;
}

bool IsRunCommand(const std::wstring& commandLine) {
    return commandLine == L"run";
}
