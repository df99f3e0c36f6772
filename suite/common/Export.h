#pragma once
// Marks what each library of the suite exports: its own sources export, everybody else imports.
#define SUITE_EXPORTED __declspec(dllexport)
#define SUITE_IMPORTED __declspec(dllimport)

#ifdef SUITE_IPC_EXPORTS
#define SUITE_IPC_API SUITE_EXPORTED
#else
#define SUITE_IPC_API SUITE_IMPORTED
#endif

#ifdef SUITE_LOGGER_EXPORTS
#define SUITE_LOGGER_API SUITE_EXPORTED
#else
#define SUITE_LOGGER_API SUITE_IMPORTED
#endif

#ifdef SUITE_PRODUCT_EXPORTS
#define SUITE_PRODUCT_API SUITE_EXPORTED
#else
#define SUITE_PRODUCT_API SUITE_IMPORTED
#endif

#ifdef SUITE_REGISTRY_EXPORTS
#define SUITE_REGISTRY_API SUITE_EXPORTED
#else
#define SUITE_REGISTRY_API SUITE_IMPORTED
#endif

#ifdef SUITE_REPORT_EXPORTS
#define SUITE_REPORT_API SUITE_EXPORTED
#else
#define SUITE_REPORT_API SUITE_IMPORTED
#endif

#ifdef SUITE_URL_EXPORTS
#define SUITE_URL_API SUITE_EXPORTED
#else
#define SUITE_URL_API SUITE_IMPORTED
#endif

#ifdef SUITE_XML_EXPORTS
#define SUITE_XML_API SUITE_EXPORTED
#else
#define SUITE_XML_API SUITE_IMPORTED
#endif
