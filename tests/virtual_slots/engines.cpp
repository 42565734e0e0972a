#include "pattern/field_walk.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/pattern_engine_portable.h"
#include "pattern/pattern_engine_sse.h"
#include "pattern/reference_pattern.h"
#include "zvk/diagnostics.h"

namespace zvk::Pelkraft::TestSupport {

template <typename... Operation>
void Mention(Operation...)
{}

// A pointer to a virtual operation is its slot, so that the compiler lays the class's table out.
void MentionOneOfEach()
{
    Mention(&DotWeavePatternEngine::InitFromText,
            &DotWeavePatternEngineX86<RandomField>::GetRandomSource,
            &DotWeavePatternEngineX86<RandomFieldNG>::GetRandomSource,
            &DotWeavePatternEngineSse<RandomPointer<SseTransformation>>::InitFromText,
            &DotWeavePatternEngineSse<RandomPointerNG<SseTransformation>>::InitFromText,
            &Testonly::CDotWeavePattern<RandomField>::GetRandomSource,
            &DotWeavePatternConverter::Parse, &DotWeavePatternConverterX86::Parse,
            &DotWeavePatternConverterSse::GetSseTables, &Diagnostics::ILogSink::Write);
}

} // namespace zvk::Pelkraft::TestSupport
