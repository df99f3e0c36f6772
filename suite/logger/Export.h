#pragma once
// Marks what QxLogger.dll exports.
#ifdef SUITE_LOGGER_EXPORTS
#define SUITE_LOGGER_API __declspec(dllexport)
#else
#define SUITE_LOGGER_API __declspec(dllimport)
#endif
