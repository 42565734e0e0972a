// Microsoft's C library has this function, which Wine's headers leave out.
#pragma once

#include_next <wchar.h>

extern "C" int __cdecl fwide(FILE* stream, int mode);
