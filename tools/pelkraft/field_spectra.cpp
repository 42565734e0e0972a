#include "tools/pelkraft/field_spectra.h"

#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/spectrum.h"

#include <map>
#include <string>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

double VarianceOf(const InkShares& ink)
{
    const double mean = MeanOf(ink).measured;
    double variance = 0;
    for (const ValueShare& share : ink.values)
        variance += share.measured * (share.value - mean) * (share.value - mean);
    return variance;
}

// The values of the ink.
std::vector<double> PrintEvenArea(DotWeavePattern& pattern, const FieldSpectrum& what)
{
    const auto inColours = static_cast<std::size_t>(pattern.GetInColorCount());
    const auto outInks = static_cast<std::size_t>(pattern.GetOutColorCount());
    std::vector<unsigned char> steps(spectrumSide * inColours);
    for (std::size_t x = 0; x < spectrumSide; ++x)
        steps[x * inColours + static_cast<std::size_t>(what.inColour)] =
            static_cast<unsigned char>(what.step);
    std::vector<unsigned char> inks(spectrumSide * outInks);
    std::vector<double> field;
    field.reserve(spectrumSide * spectrumSide);
    for (std::size_t y = 0; y < spectrumSide; ++y) {
        pattern.ApplyPattern(steps.data(), inks.data(), spectrumSide);
        for (std::size_t x = 0; x < spectrumSide; ++x)
            field.push_back(inks[x * outInks + static_cast<std::size_t>(what.outInk)]);
    }
    return field;
}

} // namespace

std::vector<FieldSpectrum> MeasureSpectra(const PatternText& text,
                                          const std::vector<StepShares>& shares)
{
    // By in-colour, with the largest variance so far.
    std::map<int, std::pair<double, FieldSpectrum>> liveliest;
    for (const StepShares& step : shares) {
        for (const InkShares& ink : step.inks) {
            auto& best = liveliest[step.inColour];
            if (const double variance = VarianceOf(ink); variance > best.first)
                best = {variance, {step.inColour, step.step, ink.outInk, {}}};
        }
    }
    std::vector<FieldSpectrum> spectra;
    for (auto& [inColour, best] : liveliest) {
        std::string refusal;
        const auto pattern = TryDrawingPattern(text, refusal);
        if (best.first == 0 || pattern == nullptr)
            continue;
        best.second.power = RadialSpectrum(PrintEvenArea(*pattern, best.second), spectrumSide);
        spectra.push_back(std::move(best.second));
    }
    return spectra;
}

} // namespace zvk::Pelkraft::Client
