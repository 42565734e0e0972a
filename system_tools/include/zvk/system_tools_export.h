// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks what the companion library exports. On Windows nothing is marked as imported: a customer
// reaches it through the import library's jumps, and so may put a function of its own in the place
// of one of these; DLLs that are linked already keep theirs.
#if !defined(_WIN32)
#define ZVK_SYSTEM_TOOLS_EXPORT __attribute__((visibility("default")))
#elif defined(ZVK_SYSTEM_TOOLS_BUILDING)
#define ZVK_SYSTEM_TOOLS_EXPORT __declspec(dllexport)
#else
#define ZVK_SYSTEM_TOOLS_EXPORT
#endif
