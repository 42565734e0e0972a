// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks what the companion library exports.
#if defined(_WIN32) && defined(ZVK_SYSTEM_TOOLS_SHARED)
#if defined(ZVK_SYSTEM_TOOLS_BUILDING)
#define ZVK_SYSTEM_TOOLS_EXPORT __declspec(dllexport)
#else
#define ZVK_SYSTEM_TOOLS_EXPORT __declspec(dllimport)
#endif
#elif defined(_WIN32)
#define ZVK_SYSTEM_TOOLS_EXPORT
#else
#define ZVK_SYSTEM_TOOLS_EXPORT __attribute__((visibility("default")))
#endif
