// Visibility of the library's public names; every exported class and function carries ZELDOM40_API.
#pragma once

#if defined(ZELDOM40_STATIC)
#define ZELDOM40_API
#elif defined(_WIN32)
#if defined(ZELDOM40_BUILD)
#define ZELDOM40_API __declspec(dllexport)
#else
#define ZELDOM40_API __declspec(dllimport)
#endif
#else
#define ZELDOM40_API __attribute__((visibility("default")))
#endif
