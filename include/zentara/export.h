#pragma once

/// Marks what the shared library exports. Everything else is hidden.
#if defined(_WIN32)
#if defined(ZENTARA_BUILDING_LIBRARY)
#define ZENTARA_API __declspec(dllexport)
#else
#define ZENTARA_API __declspec(dllimport)
#endif
/// Marks the C functions that a plug-in exports.
#define ZENTARA_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define ZENTARA_API __attribute__((visibility("default")))
#define ZENTARA_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif
