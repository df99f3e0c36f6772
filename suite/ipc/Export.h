#pragma once
// Marks what QxIpc.dll exports.
#ifdef SUITE_IPC_EXPORTS
#define SUITE_IPC_API __declspec(dllexport)
#else
#define SUITE_IPC_API __declspec(dllimport)
#endif
