#pragma once
// Marks what DuiLib.dll exports. Nothing is marked in the pure files, which are also built natively.
#ifdef _WIN32
#ifdef DUILIB_EXPORTS
#define DUILIB_API __declspec(dllexport)
#else
#define DUILIB_API __declspec(dllimport)
#endif
#else
#define DUILIB_API
#endif
