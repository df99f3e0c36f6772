#pragma once
// Marks what QxXml.dll exports.
#ifdef SUITE_XML_EXPORTS
#define SUITE_XML_API __declspec(dllexport)
#else
#define SUITE_XML_API __declspec(dllimport)
#endif
