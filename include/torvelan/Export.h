// Marks the names that the shared library exports; everything else is hidden.
#pragma once

#if defined(_WIN32)
#define TORVELAN_API __declspec(dllexport)
#else
#define TORVELAN_API __attribute__((visibility("default")))
#endif
