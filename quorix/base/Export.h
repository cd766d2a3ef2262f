/// \file
/// What the shared library shows. Everything else is hidden.
#pragma once

#if defined(_WIN32)
#define QUORIX_API
#define QUORIX_LOCAL
#else
#define QUORIX_API __attribute__((visibility("default")))
#define QUORIX_LOCAL __attribute__((visibility("hidden")))
#endif
