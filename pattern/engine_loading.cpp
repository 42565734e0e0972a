#include "pattern/engine_loading.h"

namespace zvk::Pelkraft {
namespace {

constexpr const wchar_t* noInColorsOrInks =
    L"DotWeavePattern::Init invalid DotWeave pattern configuration file!";

} // namespace

void LoadEngine(DotWeavePatternEngine& engine, char* text)
{
    engine.InitFromText(text);
    if (engine.GetInColorCount() <= 0 || engine.GetOutColorCount() <= 0)
        throw noInColorsOrInks;
}

} // namespace zvk::Pelkraft
