#pragma once
// Which window a start shows, and whether it may start at all. Pure logic.
#include <string>

// What the registry says about the machine, preset to what counts when a value cannot be read: a driver that nobody
// reported is missing, an algorithm that nobody complained of is fine.
struct StartSettings {
    int filterDriverInstall = 0;
    int initAlgorithm = 1;
};

enum class StartWindow { kSettings, kDriverBrokenMessage, kFunctionUnavailableMessage };

StartWindow ChooseStartWindow(const StartSettings& settings);

// Whether the program was started with the one command line that it accepts: "run", and not a character more.
bool IsRunCommand(const std::wstring& commandLine);
