// The memory functions of libtiff, in place of its own: where one of those gives nothing, libtiff
// follows null pointers or frees what it never had. So the program ends here instead.
#include "tools/pelkraft/memory_end.h"

#include <tiffio.h>

#include <cstdlib>

namespace {

void* OrEnd(void* memory)
{
    if (memory == nullptr)
        zvk::Pelkraft::Client::EndForMemory();
    return memory;
}

} // namespace

extern "C" {

// Seen by libtiff, other than the rest of the program.
#pragma GCC visibility push(default)

void* _TIFFmalloc(tmsize_t size)
{
    // libtiff itself gives nothing for no bytes.
    return size == 0 ? nullptr : OrEnd(std::malloc(static_cast<std::size_t>(size)));
}

void* _TIFFrealloc(void* memory, tmsize_t size)
{
    return OrEnd(std::realloc(memory, static_cast<std::size_t>(size)));
}

#pragma GCC visibility pop

} // extern "C"
