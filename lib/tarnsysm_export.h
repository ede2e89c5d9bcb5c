// Tarnsysm: planar computational geometry for 2D drafting.
// The export macro: only names marked TARNSYSM_API are visible outside the shared library.
#pragma once

#if defined(_WIN32) || defined(__CYGWIN__)
#if defined(TARNSYSM_STATIC_DEFINE)
#define TARNSYSM_API
#elif defined(TARNSYSM_BUILDING)
#define TARNSYSM_API __declspec(dllexport)
#else
#define TARNSYSM_API __declspec(dllimport)
#endif
#else
#define TARNSYSM_API __attribute__((visibility("default")))
#endif
