#pragma once

#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// simulate of in.tif by pattern.txt to out.tif, in a folder of its own.
class SimulateFixture : public ToolFixture
{
protected:
    SimulateFixture() { WritePattern(smallPattern); }

    void WritePattern(const std::string& text) { WriteBytes(Path("pattern.txt"), text); }

    // Separated inks, in the order of the file.
    static FileForm InkForm(const std::string& names = {})
    {
        FileForm form;
        form.photometric = PHOTOMETRIC_SEPARATED;
        form.setTags = [names](TIFF* tiff) {
            if (names.empty())
                return;
            TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
            std::string joined = names;
            std::replace(joined.begin(), joined.end(), ' ', '\0');
            TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<int>(joined.size() + 1),
                         joined.c_str());
        };
        return form;
    }

    void WriteInput(const TiffImage& image, const std::string& names = {})
    {
        WriteTiff(Path("in.tif"), image, InkForm(names));
    }

    [[nodiscard]] Outcome Simulate(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments = {"simulate", Path("pattern.txt"), Path("in.tif"),
                                              Path("out.tif")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }
};

// Two channels that hold 0 to 255 and 255 to 0.
inline TiffImage Ramps()
{
    TiffImage image = BlankImage(256, 2, 2, 8);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 256; ++x) {
            image.At(x, y, 0) = static_cast<std::uint16_t>(x);
            image.At(x, y, 1) = static_cast<std::uint16_t>(255 - x);
        }
    }
    return image;
}

} // namespace zvk::Pelkraft::TestSupport
