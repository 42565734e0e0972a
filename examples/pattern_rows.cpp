// Applies a dot pattern from the last row to the first: each row depends on its number alone.
#include <pelkraft/plan.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

const std::string text = "DotWeavePattern VERSION 2\n"
                         "BEGIN_OUT_INKS Cyan END_OUT_INKS\n"
                         "BEGIN_IN_COLORS Cyan END_IN_COLORS\n"
                         "BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan END_INKS\n"
                         "BEGIN_VALUES 1 1:1 0-255 0-0 END_VALUES END_IN_COLOR\n";

plk_pattern* Make(const std::string& patternText)
{
    plk_failure failure = {};
    failure.size = sizeof failure;
    plk_pattern* pattern = nullptr;
    if (plk_pattern_create(patternText.data(), patternText.size(), nullptr, &pattern, &failure) !=
        PLK_OK)
        std::printf("%s\n", failure.text);
    return pattern;
}

} // namespace

int main()
{
    // Step 9 is none.
    std::string wrong = text;
    wrong.replace(wrong.find("1 1:1"), 1, "9");
    Make(wrong);

    plk_pattern* const pattern = Make(text);
    const int rows = 3;
    const int pixels = 8;
    unsigned char steps[rows * pixels];
    unsigned char inks[rows * pixels];
    std::memset(steps, 1, sizeof steps);

    plk_source source = {};
    source.size = sizeof source;
    source.base = steps;
    source.bytes = sizeof steps;
    plk_target target = {};
    target.size = sizeof target;
    target.base = inks;
    target.bytes = sizeof inks;
    for (int64_t row = rows - 1; row >= 0; --row) {
        source.offset = target.offset = row * pixels;
        plk_pattern_run(pattern, static_cast<uint64_t>(row), 1, pixels, &source, &target, nullptr);
    }
    plk_pattern_free(pattern);

    for (int i = 0; i != rows * pixels; ++i)
        std::printf("%d%c", inks[i], i % pixels == pixels - 1 ? '\n' : ' ');
}
