#include "tests/c_interface/pattern_calls.h"
#include "tests/c_interface/sealed_record.h"
#include "tests/direct/levels.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

plk_failure LoadFailure(const std::string& record)
{
    char other = 0;
    auto* pattern = reinterpret_cast<plk_pattern*>(&other);
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_load(record.data(), record.size(), &pattern, &failure), failure.status);
    EXPECT_EQ(pattern, nullptr);
    return failure;
}

TEST(SavedPattern, IsTheSameForTheSameTextAndEngineAtEveryLevel)
{
    const std::string first = SavedBytesOf(MakeHandle(exampleText).get());
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        EXPECT_EQ(SavedBytesOf(MakeHandle(exampleText).get()), first);
    }
    EXPECT_NE(SavedBytesOf(MakeHandle(exampleText, PLK_ENGINE_X86).get()), first);
    EXPECT_NE(SavedBytesOf(MakeHandle(std::string(exampleText) + " ").get()), first);
    // Text and engine, and a frame of 20 bytes.
    EXPECT_EQ(first.size(), std::string(exampleText).size() + 4 + 20);
}

TEST(SavedPattern, ComesBackWithItsRowsAndItsBytes)
{
    const Bytes steps = {2, 1, 1, 0, 3, 1, 2, 1, 2, 0, 9, 9};
    for (const std::int32_t engine : {PLK_ENGINE_AUTOMATIC, PLK_ENGINE_X86, PLK_ENGINE_SSE}) {
        const PatternHandle handle = MakeHandle(exampleText, engine);
        const std::string record = SavedBytesOf(handle.get());
        const GuardedBuffer guarded(Bytes(record.begin(), record.end()));
        plk_pattern* loaded = nullptr;
        ASSERT_EQ(plk_pattern_load(guarded.data(), guarded.size(), &loaded, nullptr), PLK_OK);
        const PatternHandle owner(loaded);
        EXPECT_EQ(SavedBytesOf(loaded), record);
        for (const std::uint64_t row : {0U, 1U, 12345U})
            EXPECT_EQ(RunRow(loaded, row, steps), RunRow(handle.get(), row, steps));
    }
}

TEST(SavedPattern, IsRefusedWithAnyByteChangedAndAnyByteGone)
{
    const std::string record = SavedBytesOf(MakeHandle(exampleText).get());
    for (std::size_t i = 0; i < record.size(); ++i) {
        for (const unsigned change : {1U, 0x80U, 0xFFU}) {
            std::string damaged = record;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ change);
            ASSERT_EQ(LoadFailure(damaged).status, PLK_BAD_RECORD) << i;
        }
        ASSERT_EQ(LoadFailure(record.substr(0, i)).status, PLK_BAD_RECORD) << i;
    }
    EXPECT_EQ(LoadFailure(record + "x").status, PLK_BAD_RECORD);
}

TEST(SavedPattern, IsRefusedWithAnEngineThatKeepsNoRecords)
{
    const std::string text = exampleText;
    for (const std::int32_t engine : {1, 4, -1}) {
        Bytes content;
        AppendNumber(content, static_cast<std::uint32_t>(engine), 4);
        content.insert(content.end(), text.begin(), text.end());
        const Bytes record = SealedRecord({'p', 'l', 'k', 'D'}, 1, content);
        const plk_failure failure = LoadFailure(std::string(record.begin(), record.end()));
        EXPECT_EQ(failure.status, PLK_BAD_RECORD);
        EXPECT_EQ(failure.given, engine);
        EXPECT_EQ(std::string(failure.text),
                  "record names the engine " + std::to_string(engine) + "; it must be 0, 2 or 3");
    }
}

TEST(SavedPattern, IsRefusedWithoutItsBytes)
{
    plk_pattern* pattern = nullptr;
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_load(nullptr, 40, &pattern, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 record");
    const std::string record = SavedBytesOf(MakeHandle(exampleText).get());
    EXPECT_EQ(plk_pattern_load(record.data(), record.size(), nullptr, &failure), PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 pattern");
}

TEST(SavedPattern, LeavesABufferAloneThatIsTooSmall)
{
    const PatternHandle handle = MakeHandle(exampleText);
    const std::string record = SavedBytesOf(handle.get());
    const GuardedBuffer buffer(record.size() - 1, Flush::AtEnd, 0xA5);
    std::uint64_t needed = 0;
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_save(handle.get(), buffer.data(), buffer.size(), &needed, &failure),
              PLK_TOO_SMALL);
    EXPECT_EQ(needed, record.size());
    EXPECT_EQ(failure.needed, static_cast<std::int64_t>(record.size()));
    EXPECT_EQ(buffer.bytes(), Bytes(record.size() - 1, 0xA5));
    EXPECT_EQ(plk_pattern_save(nullptr, buffer.data(), buffer.size(), &needed, &failure),
              PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 pattern");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
