// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks what the library exports; everything else stays hidden.
#if defined(PELKRAFT_STATIC)
#define PELKRAFT_EXPORT
#elif defined(_WIN32)
#if defined(PELKRAFT_BUILDING)
#define PELKRAFT_EXPORT __declspec(dllexport)
#else
#define PELKRAFT_EXPORT __declspec(dllimport)
#endif
#else
#define PELKRAFT_EXPORT __attribute__((visibility("default")))
#endif
