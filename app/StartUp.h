#pragma once
// The steps of a start, in their order: crash handler, logger, command line, registry, choice of the window, single
// instance, window. Every failure is logged and ends the process quietly. Thread: the process's only one so far.
#include <windows.h>

// The gate of the command line: an empty argument falls back to the whole command line of the process, which begins
// with the program's path, so that a start without arguments is refused too.
bool IsCmdLineEnable(const wchar_t* cmdLine);

// Runs the program; returns when its window has closed or it may not start.
void StartUp(HINSTANCE instance, const wchar_t* cmdLine);
