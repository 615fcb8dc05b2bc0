#pragma once

#if defined(_WIN32) && defined(ZRHMISRV_BUILD)
#define ZRHMISRV_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZRHMISRV_API __declspec(dllimport)
#else
#define ZRHMISRV_API __attribute__((visibility("default")))
#endif
