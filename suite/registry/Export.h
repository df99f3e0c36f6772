#pragma once
// Marks what QxRegistry.dll exports.
#ifdef SUITE_REGISTRY_EXPORTS
#define SUITE_REGISTRY_API __declspec(dllexport)
#else
#define SUITE_REGISTRY_API __declspec(dllimport)
#endif
