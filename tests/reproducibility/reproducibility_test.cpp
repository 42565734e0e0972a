#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/reproducibility/golden_digests.h"
#include "tests/reproducibility/library_digests.h"
#include "tests/reproducibility/share_out.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

// The golden digests against the naive references and against the library, on both roads, on all
// engines and on several threads at once. A push takes every tenth seed, PELKRAFT_TEST_FULL=1
// takes all; PELKRAFT_TEST_THREADS lists the numbers of threads.
namespace zvk::Pelkraft::TestSupport {
namespace {

const GoldenDigests& Goldens()
{
    static const GoldenDigests goldens(PELKRAFT_GOLDENS);
    return goldens;
}

bool TakesAll()
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr;
}

// As "1,2,16".
std::vector<int> ThreadCounts()
{
    const char* wanted = std::getenv("PELKRAFT_TEST_THREADS");
    std::istringstream list(wanted != nullptr ? wanted : "1,16");
    std::vector<int> counts;
    for (std::string count; std::getline(list, count, ',');)
        counts.push_back(std::stoi(count));
    return counts;
}

// One pattern text.
struct Text
{
    int number;
    int seedNumber;
};

std::vector<Text> Texts()
{
    std::vector<Text> texts;
    for (int number = 0; number < goldenPatternCount; ++number)
        for (int seed = 0; seed < goldenSeedCount; seed += TakesAll() ? 1 : 10)
            texts.push_back({number, seed});
    return texts;
}

int Count(const std::vector<Text>& texts)
{
    return static_cast<int>(texts.size());
}

template <typename List>
auto& At(List& list, int index)
{
    return list[static_cast<std::size_t>(index)];
}

// For the eye, and for comparing one build with another.
void Say(const char* what, std::size_t count, const std::string& digest)
{
    std::cout << "digest of " << count << ' ' << what << ": " << digest << '\n';
}

TEST(GoldenDigests, AreThoseOfTheNaiveConversion)
{
    for (int number = 0; number < goldenConversionCount; ++number)
        EXPECT_EQ(Goldens().Conversion(number), NaiveConversionDigest(number)) << number;
}

TEST(GoldenDigests, AreThoseOfTheNaivePatterns)
{
    for (const auto& [number, seed] : Texts()) {
        if (HasFailure())
            return;
        SCOPED_TRACE(PatternName(number, seed));
        const PatternDigests naive = NaivePatternDigests(number, seed);
        const PatternDigests golden = Goldens().Pattern(number, seed);
        for (std::size_t size = 0; size < std::size(pictureSizes); ++size)
            EXPECT_EQ(golden.pictures[size], naive.pictures[size]);
        EXPECT_EQ(golden.afterReset, naive.afterReset);
        EXPECT_EQ(golden.reference, naive.reference);
    }
}

TEST(GoldenDigests, AreThoseOfConversionsOnAnyNumberOfThreads)
{
    Digest all;
    for (const int threads : ThreadCounts()) {
        std::vector<std::string> vector(goldenConversionCount);
        std::vector<std::string> portable(goldenConversionCount);
        ShareOut(threads, goldenConversionCount, [&](int number) {
            At(vector, number) = LibraryConversionDigest(number, false);
            At(portable, number) = LibraryConversionDigest(number, true);
        });
        int onBothRoads = 0;
        all = Digest();
        for (int number = 0; number < goldenConversionCount && !HasFailure(); ++number) {
            SCOPED_TRACE(ConversionName(number));
            EXPECT_EQ(At(vector, number), Goldens().Conversion(number)) << threads;
            all.Add(At(vector, number));
            if (IsLeftPackedSomewhere(number))
                continue;
            EXPECT_EQ(At(portable, number), Goldens().Conversion(number)) << threads;
            ++onBothRoads;
        }
        EXPECT_GE(onBothRoads, 150);
        if (HasFailure())
            return;
    }
    Say("conversions", goldenConversionCount, all.Hex());
}

void ExpectGolden(const Text& text, const EngineDigests& x86, const EngineDigests& sse,
                  const EngineDigests& reference)
{
    SCOPED_TRACE(PatternName(text.number, text.seedNumber));
    const PatternDigests golden = Goldens().Pattern(text.number, text.seedNumber);
    for (std::size_t size = 0; size < std::size(pictureSizes); ++size) {
        EXPECT_EQ(x86.pictures[size], golden.pictures[size]) << "X86";
        EXPECT_EQ(sse.pictures[size], golden.pictures[size]) << "Sse";
    }
    EXPECT_EQ(x86.afterReset, golden.afterReset);
    EXPECT_EQ(sse.afterReset, golden.pictures[0]);
    EXPECT_EQ(reference.allPictures, golden.reference);
}

TEST(GoldenDigests, AreThoseOfPatternsOnAnyNumberOfThreads)
{
    const std::vector<Text> texts = Texts();
    Digest all;
    for (const int threads : ThreadCounts()) {
        SCOPED_TRACE(threads);
        std::vector<EngineDigests> x86(texts.size());
        std::vector<EngineDigests> sse(texts.size());
        std::vector<EngineDigests> reference(texts.size());
        ShareOut(threads, Count(texts), [&](int i) {
            const auto& [number, seed] = At(texts, i);
            At(x86, i) = LibraryPatternDigests(number, seed, DotWeavePattern::X86);
            At(sse, i) = LibraryPatternDigests(number, seed, DotWeavePattern::Sse);
            At(reference, i) = LibraryPatternDigests(number, seed, DotWeavePattern::Reference);
        });
        all = Digest();
        for (int i = 0; i < Count(texts) && !HasFailure(); ++i) {
            ExpectGolden(At(texts, i), At(x86, i), At(sse, i), At(reference, i));
            all.Add(At(x86, i).allPictures + At(reference, i).allPictures);
        }
        if (HasFailure())
            return;
    }
    Say("pictures", texts.size() * std::size(pictureSizes), all.Hex());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
