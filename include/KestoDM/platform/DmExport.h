#pragma once

// Symbols of the library are hidden unless marked: KESTODM_API marks the
// classes and functions that hosts may call.
#if defined(_WIN32)
#if defined(KESTODM_BUILDING_LIBRARY)
#define KESTODM_API __declspec(dllexport)
#else
#define KESTODM_API __declspec(dllimport)
#endif
#else
#define KESTODM_API __attribute__((visibility("default")))
#endif
