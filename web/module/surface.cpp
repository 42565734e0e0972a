#include "web/module/surface.h"

#include "zvk/system_tools.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>

namespace zvk::Pelkraft::Web {
namespace {

// A vector is loaded fastest from a multiple of its size.
constexpr std::size_t vectorBytes = 16;

std::array<char, 256> keptText;

template <typename Character>
const char* Keep(const Character* text)
{
    std::size_t length = 0;
    for (; length < keptText.size() - 1 && text[length] != 0; ++length)
        keptText[length] = static_cast<char>(text[length]);
    keptText[length] = '\0';
    return keptText.data();
}

} // namespace

const char* KeepText(const char* text)
{
    return Keep(text);
}

const char* KeepText(const wchar_t* text)
{
    return Keep(text);
}

PELKRAFT_FOR_JAVASCRIPT(allocate) void* Allocate(std::size_t bytes)
{
    return memalign(vectorBytes, std::max<std::size_t>(bytes, 1));
}

PELKRAFT_FOR_JAVASCRIPT(release) void Release(void* memory)
{
    std::free(memory);
}

PELKRAFT_FOR_JAVASCRIPT(memory_in_use) int MemoryInUse()
{
    return mallinfo().uordblks;
}

PELKRAFT_FOR_JAVASCRIPT(version) const char* Version()
{
    return PELKRAFT_VERSION;
}

PELKRAFT_FOR_JAVASCRIPT(sse_level) int SseLevel()
{
    return SystemTools::GetSseVersion();
}

PELKRAFT_FOR_JAVASCRIPT(limit_sse_level) void LimitSseLevel(int level)
{
    SystemTools::LimitSseVersion(level);
}

} // namespace zvk::Pelkraft::Web
