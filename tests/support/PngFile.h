#pragma once
// Writes what a test has drawn as a PNG file, for the people who look at it. COM must be initialised.
#include <windows.h>

#include <string>
#include <vector>

// 0x??RRGGBB, top row first. False when the file cannot be written.
bool WritePng(const std::wstring& path, const std::vector<DWORD>& pixels, int widthPx, int heightPx);
