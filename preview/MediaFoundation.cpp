#include "preview/MediaFoundation.h"

#include <windows.h>

#include "suite/logger/QxLogger.h"

bool HasMediaFoundation() {
    static const bool there = [] {
        const bool loaded = LoadLibraryExW(L"mfplat.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32) != nullptr;
        if (!loaded) {
            LogLine(4, L"HasMediaFoundation", L"this system has no Media Foundation: no camera, no videos");
        }
        return loaded;
    }();
    return there;
}
