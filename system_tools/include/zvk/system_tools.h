// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zvk/system_tools_export.h"

namespace zvk {
namespace SystemTools {

// The processor's vector level, the operating system's support included. Each level includes
// those below.
//   0 none   3 SSSE3    6 AVX2
//   1 SSE    4 SSE4.1   7 AVX-512 (F, BW, VL and VBMI)
//   2 SSE2   5 SSE4.2
// A processor other than x86 has level 3, unless the library was built without a shuffle of bytes
// for it: then it has level 0. The library uses vectors of 16 bytes from level 3 on, of 32 from 6
// on, of 64 at 7. The level is worked out once, and costs a load afterwards. Safe to call from any
// thread.
ZVK_SYSTEM_TOOLS_EXPORT int GetSseVersion();

// Lowers what GetSseVersion reports to at most level, for tests and for a host that must not use
// some instructions. Each conversion that begins afterwards obeys it; a pattern keeps the engine
// that it was built with. A later call replaces an earlier one; no level raises the processor's
// own.
ZVK_SYSTEM_TOOLS_EXPORT void LimitSseVersion(int level);

} // namespace SystemTools
} // namespace zvk
