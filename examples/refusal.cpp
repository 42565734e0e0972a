// A conversion that can't be served is refused with a constant text before the first pixel moves.
#include <pelkraft/image_row.h>
#include <zvk/diagnostics.h>

#include <cstdio>

namespace {

// Failures are logged as well; a host sends the lines where it wants them.
class LinesToStdout final : public zvk::Diagnostics::ILogSink
{
public:
    void Write(const wchar_t* line) override { std::printf("log: %ls\n", line); }
};

} // namespace

int main()
{
    LinesToStdout sink;
    zvk::Diagnostics::Seh::SetDefaultLog(&sink);

    const zvk::Pelkraft::ImageRow cmyk(3, 4, 8, false, nullptr);
    zvk::Pelkraft::ImageRow rgb(3, 3, 8, false, nullptr);
    try {
        rgb.FillFrom(cmyk, nullptr);
    } catch (const char* text) {
        std::printf("caught: %s\n", text);
    }
    zvk::Diagnostics::Seh::SetDefaultLog(nullptr);
}
