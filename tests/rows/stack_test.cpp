#include "pelkraft/image_row.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t stackBytes = std::size_t{256} * 1024;
constexpr unsigned char paint = 0xA5;
// The header says at most 50 KB.
constexpr std::size_t promisedBytes = std::size_t{50} * 1024;
constexpr int width = 1000;

struct Format
{
    int bits;
    bool planar;
};
constexpr Format formats[] = {{8, false}, {16, false}, {1, true}, {2, true}, {8, true}, {16, true}};

void ConvertByAll(const Format& from, const Format& to, int channels)
{
    const ImageRow source(width, channels, from.bits, from.planar, nullptr);
    ImageRow row(width, channels, to.bits, to.planar, nullptr);
    row.FillFrom(source, nullptr);
    for (const int factor : {-1, 2, -4})
        row.FillFromWithPixelRepeat(source, factor, nullptr);
    int map[130];
    for (int c = 0; c != channels; ++c)
        map[c] = c % 3 == 2 ? -1 : channels - 1 - c;
    row.FillFromWithRemap(source, map, nullptr);
}

void* ConvertAll(void*)
{
    for (const Format& from : formats)
        for (const Format& to : formats)
            for (const int channels : {1, 3, 4, 16, 20, 64, 130})
                ConvertByAll(from, to, channels);
    return nullptr;
}

void* DoNothing(void*)
{
    return nullptr;
}

// Bytes of a thread's stack that have been written to.
std::size_t MeasureStack(void* (*body)(void*))
{
    constexpr std::size_t page = 4096;
    std::vector<unsigned char> memory(stackBytes + page, paint);
    unsigned char* const stack =
        memory.data() + (page - reinterpret_cast<std::uintptr_t>(memory.data()) % page) % page;
    pthread_attr_t attributes;
    EXPECT_EQ(0, pthread_attr_init(&attributes));
    EXPECT_EQ(0, pthread_attr_setstack(&attributes, stack, stackBytes));
    pthread_t thread;
    EXPECT_EQ(0, pthread_create(&thread, &attributes, body, nullptr));
    EXPECT_EQ(0, pthread_join(thread, nullptr));
    pthread_attr_destroy(&attributes);
    const auto isWritten = [](unsigned char byte) { return byte != paint; };
    const unsigned char* const deepest = std::find_if(stack, stack + stackBytes, isWritten);
    return static_cast<std::size_t>(stack + stackBytes - deepest);
}

TEST(StackOfAConversion, StaysBelowWhatTheHeaderSays)
{
    const int own = SystemTools::GetSseVersion();
    // The thread's own records stand on its stack as well.
    const std::size_t ofThread = MeasureStack(DoNothing);
    for (const int level : {0, 3, 6, 7}) {
        if (level > own) {
            std::printf("level %d: not run, the processor has %d\n", level, own);
            continue;
        }
        SystemTools::LimitSseVersion(level);
        const std::size_t used = MeasureStack(ConvertAll) - ofThread;
        std::printf("level %d: %zu bytes of stack\n", level, used);
        EXPECT_LT(used, promisedBytes) << level;
    }
    SystemTools::LimitSseVersion(own);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
