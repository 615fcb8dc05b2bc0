#pragma once

#if defined(_WIN32) && defined(ZRHMISRV_BUILD)
#define ZRHMISRV_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZRHMISRV_API __declspec(dllimport)
#else
#define ZRHMISRV_API __attribute__((visibility("default")))
#endif

/// Before the definition of an extension's `ext_interface`: exports it under that name.
#ifdef _WIN32
#define ZRHMISRV_ENTRY extern "C" __declspec(dllexport)
#else
#define ZRHMISRV_ENTRY extern "C" __attribute__((visibility("default")))
#endif
