#pragma once
// Marks what QxReport.dll exports.
#ifdef SUITE_REPORT_EXPORTS
#define SUITE_REPORT_API __declspec(dllexport)
#else
#define SUITE_REPORT_API __declspec(dllimport)
#endif
