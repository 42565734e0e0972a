// A customer in Microsoft's binary interface: rows, failures, faults and copies across the border
// of the DLLs.
#include "fault_of.h"
#include "pelkraft/copy_primitives.h"
#include "pelkraft/image_row.h"
#include "zvk/diagnostics.h"
#include "zvk/system_tools.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using zvk::Pelkraft::ImageRow;
using Bytes = std::vector<unsigned char>;

int failures = 0;

void Check(bool holds, const char* what)
{
    if (holds)
        return;
    std::printf("failed: %s\n", what);
    ++failures;
}

class LinesSink final : public zvk::Diagnostics::ILogSink
{
public:
    void Write(const wchar_t* line) override { lines.emplace_back(line); }

    std::vector<std::wstring> lines;
};

Bytes Ramp(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 256);
    return bytes;
}

// Channel c of pixel x goes from place 4 * x + c to place 1000 * c + x.
void SplitsFourChannels(bool forcePortable)
{
    constexpr int width = 1000;
    constexpr int channels = 4;
    Bytes from = Ramp(width * channels);
    Bytes to(from.size(), 0xA5);
    Bytes expected(from.size());
    for (int x = 0; x < width; ++x)
        for (int channel = 0; channel < channels; ++channel)
            expected[static_cast<std::size_t>(channel * width + x)] =
                from[static_cast<std::size_t>(x * channels + channel)];
    const ImageRow source(width, channels, 8, false, from.data());
    ImageRow destination(width, channels, 8, true, to.data());
    destination.FillFrom(source, false, forcePortable);
    Check(to == expected, "4 channels are split into planes");
}

// Three planes to pixels in another order of channels, and those twice each, the last one first.
void MapsAndRepeats(bool forcePortable)
{
    constexpr int width = 77;
    Bytes planes = Ramp(width * 3);
    Bytes pixels(width * 3);
    const int map[] = {2, 0, 1};
    const ImageRow planar(width, 3, 8, true, planes.data());
    ImageRow interleaved(width, 3, 8, false, pixels.data());
    interleaved.FillFromWithRemap(planar, map, false, forcePortable);

    Bytes turned(pixels.size() * 2, 0xA5);
    ImageRow twice(width * 2, 3, 8, false, turned.data());
    twice.FillFromWithPixelRepeat(interleaved, -2, false, forcePortable);
    Bytes expected(turned.size());
    for (int x = 0; x < width * 2; ++x)
        for (int channel = 0; channel < 3; ++channel)
            expected[static_cast<std::size_t>(x * 3 + channel)] =
                planes[static_cast<std::size_t>(map[channel] * width + (width - 1 - x / 2))];
    Check(turned == expected, "planes are mapped, turned and repeated");
}

// The body is called by the DLL through its slot, the overload by this program through its own.
class TaughtRow final : public ImageRow
{
public:
    using ImageRow::ImageRow;

    std::string called;

private:
    void FillFromBody2(const ImageRow&, const OptionalParameters& options) override
    {
        called += options.forcePortable ? "portable " : "any ";
    }
};

void CallsOverloadsAndBodiesByTheirSlots()
{
    const ImageRow source;
    TaughtRow row;
    ImageRow& base = row;
    base.FillFrom(source, nullptr);
    base.FillFrom(source, false, true);
    Check(row.called == "any portable ", "an override is called by the DLL");
}

void ThrowsATextThatIsLoggedTwice(LinesSink& sink)
{
    sink.lines.clear();
    unsigned char byte[8] = {};
    const ImageRow source(1, 3, 8, false, byte);
    ImageRow destination(1, 4, 8, false, byte);
    const char* caught = "";
    try {
        destination.FillFrom(source, nullptr);
    } catch (const char* text) {
        caught = text;
    }
    constexpr const char* text = "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion";
    Check(std::strcmp(caught, text) == 0, "the text is caught");
    Check(sink.lines.size() == 2, "a throw is logged twice");
    if (sink.lines.size() != 2)
        return;
    Check(sink.lines[0].find(L"0xE06D7363") != std::wstring::npos, "its number comes first");
    Check(sink.lines[1] == L"zvk::Pelkraft::ImageRow::FillFrom has thrown C++ exception: "
                           L"zvk::Pelkraft::ImageRow::FillFrom unsupported conversion",
          "and then its text");
}

void FillFromNowhere()
{
    static unsigned char bytes[64];
    auto* const nowhere = reinterpret_cast<unsigned char*>(16);
    const ImageRow source(16, 4, 8, false, nowhere);
    ImageRow destination(16, 4, 8, true, bytes);
    destination.FillFrom(source, nullptr);
}

void DivideByZero()
{
    unsigned char bytes[64] = {};
    zvk::Pelkraft::copySimulationUnaligned(bytes, bytes + 32, 16, 0);
}

alignas(16) unsigned char rows[2][256];

void CopyFromAnOddAddress()
{
    zvk::Pelkraft::copySimulationAlignedFixed(rows[0] + 1, rows[1], 64, 4);
}

void CopyToAnOddAddress()
{
    zvk::Pelkraft::copySimulationAlignedVariable(rows[0], rows[1] + 8, 64, 4);
}

void PassesFaultsOn(LinesSink& sink)
{
    sink.lines.clear();
    Check(FaultOf(FillFromNowhere) == STATUS_ACCESS_VIOLATION, "a fault reaches the host");
    Check(sink.lines.size() == 1, "a fault is logged once");
    Check(!sink.lines.empty() && sink.lines[0].find(L"0xC0000005") != std::wstring::npos,
          "and by its number");
    Check(FaultOf(DivideByZero) == STATUS_INTEGER_DIVIDE_BY_ZERO,
          "a divide error reaches the host");
    Check(FaultOf(CopyFromAnOddAddress) == STATUS_ACCESS_VIOLATION, "an odd source faults");
    Check(FaultOf(CopyToAnOddAddress) == STATUS_ACCESS_VIOLATION, "an odd destination faults");
}

// 51 bytes are 17 pixels of 3 bytes, and 16 of them a group.
void CopiesAGroup()
{
    const Bytes from = Ramp(256);
    std::memcpy(rows[0], from.data(), from.size());
    std::memset(rows[1], 0xA5, sizeof(rows[1]));
    zvk::Pelkraft::copySimulationAlignedFixed(rows[0], rows[1], 51, 3);
    Check(std::memcmp(rows[0], rows[1], 48) == 0 && rows[1][48] == 0xA5, "a group is copied");
}

} // namespace

int main()
{
    LinesSink sink;
    zvk::Diagnostics::Seh::SetDefaultLog(&sink);
    const int highest = zvk::SystemTools::GetSseVersion();
    for (const int level : {0, 3, 6, 7}) {
        zvk::SystemTools::LimitSseVersion(level);
        SplitsFourChannels(false);
        MapsAndRepeats(false);
        CopiesAGroup();
    }
    zvk::SystemTools::LimitSseVersion(highest);
    SplitsFourChannels(true);
    MapsAndRepeats(true);
    CallsOverloadsAndBodiesByTheirSlots();
    ThrowsATextThatIsLoggedTwice(sink);
    PassesFaultsOn(sink);
    std::printf("level %d, %d failures\n", highest, failures);
    return failures == 0 ? 0 : 1;
}
