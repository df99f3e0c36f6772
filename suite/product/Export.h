#pragma once
// Marks what QxProduct.dll exports.
#ifdef SUITE_PRODUCT_EXPORTS
#define SUITE_PRODUCT_API __declspec(dllexport)
#else
#define SUITE_PRODUCT_API __declspec(dllimport)
#endif
