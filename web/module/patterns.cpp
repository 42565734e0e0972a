#include "pelkraft/dot_weave_pattern.h"
#include "web/module/surface.h"

namespace zvk::Pelkraft::Web {

// The text ends with a zero byte.
PELKRAFT_FOR_JAVASCRIPT(create_pattern)
const char* CreatePattern(char* text, DotWeavePattern::Engine engine, DotWeavePattern** created)
{
    return TextOfFailure([=] { *created = new DotWeavePattern(text, engine); });
}

PELKRAFT_FOR_JAVASCRIPT(free_pattern) void FreePattern(DotWeavePattern* pattern)
{
    delete pattern;
}

PELKRAFT_FOR_JAVASCRIPT(in_colors) int InColors(DotWeavePattern* pattern)
{
    return pattern->GetInColorCount();
}

PELKRAFT_FOR_JAVASCRIPT(out_inks) int OutInks(DotWeavePattern* pattern)
{
    return pattern->GetOutColorCount();
}

PELKRAFT_FOR_JAVASCRIPT(top_step) int TopStep(DotWeavePattern* pattern, int inColor)
{
    return pattern->GetNumberOfStepsForInColor(inColor);
}

PELKRAFT_FOR_JAVASCRIPT(reset_pattern) void ResetPattern(DotWeavePattern* pattern)
{
    pattern->ResetRandomizer();
}

PELKRAFT_FOR_JAVASCRIPT(apply_pattern)
void ApplyPattern(DotWeavePattern* pattern, unsigned char* source, unsigned char* target,
                  unsigned long pixels)
{
    pattern->ApplyPattern(source, target, pixels);
}

} // namespace zvk::Pelkraft::Web
