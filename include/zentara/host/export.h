#pragma once

/// Marks what the host library exports. Everything else is hidden.
#if defined(_WIN32)
#if defined(ZENTARA_BUILDING_HOST)
#define ZENTARA_HOST_API __declspec(dllexport)
#else
#define ZENTARA_HOST_API __declspec(dllimport)
#endif
#else
#define ZENTARA_HOST_API __attribute__((visibility("default")))
#endif
