#pragma once
// Marks what QxUrl.dll exports.
#ifdef SUITE_URL_EXPORTS
#define SUITE_URL_API __declspec(dllexport)
#else
#define SUITE_URL_API __declspec(dllimport)
#endif
