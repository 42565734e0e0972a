#include "pelkraft/dot_weave_pattern.h"

#include "common/road.h"
#include "pattern/early_check.h"
#include "pattern/engine_loading.h"
#include "pattern/field_walk.h"
#include "pattern/pattern_engine_portable.h"
#include "pattern/pattern_engine_sse.h"
#include "pattern/reference_pattern.h"
#include "zvk/split.h"
#include "zvk/system_tools.h"

#include <memory>

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedEngine = "DotWeavePattern::Init unsupported engine";

using EngineOwner = std::unique_ptr<DotWeavePatternEngine>;

template <template <typename> class Engine, typename First, typename Second, typename... Arguments>
EngineOwner MakeGeneration(int textVersion, Arguments... arguments)
{
    if (textVersion < firstVersionOfSecondGeneration)
        return std::make_unique<Engine<First>>(arguments...);
    return std::make_unique<Engine<Second>>(arguments...);
}

EngineOwner MakePortable(int textVersion)
{
    return MakeGeneration<DotWeavePatternEngineX86, RandomField, RandomFieldNG>(textVersion);
}

EngineOwner MakeVector(int textVersion, Road road)
{
    return MakeGeneration<DotWeavePatternEngineSse, RandomPointer<SseTransformation>,
                          RandomPointerNG<SseTransformation>>(textVersion, road);
}

EngineOwner MakeByProcessor(int textVersion)
{
    const Road road = RoadOf(zvk::SystemTools::GetSseVersion());
    if (road == Road::Portable)
        return MakePortable(textVersion);
    return MakeVector(textVersion, road);
}

EngineOwner MakeEngine(DotWeavePattern::Engine engine, int textVersion)
{
    switch (engine) {
    case DotWeavePattern::Automatic:
        return MakeByProcessor(textVersion);
    case DotWeavePattern::Reference:
        return std::make_unique<Testonly::CDotWeavePattern<RandomField>>();
    case DotWeavePattern::X86:
        return MakePortable(textVersion);
    case DotWeavePattern::Sse:
        // Whoever asks for this engine answers for the byte shuffle, whatever the level.
        return MakeVector(textVersion, hasVectorRoad ? Road::Vector : Road::Portable);
    }
    throw unsupportedEngine;
}

void Release(DotWeavePatternEngine* engine)
{
    if (engine != nullptr)
        engine->RemoveHolder();
}

} // namespace

DotWeavePattern::DotWeavePattern(char* text) : DotWeavePattern(text, Automatic) {}

DotWeavePattern::DotWeavePattern(char* text, Engine engine) : mEngine(nullptr), mTextVersion(1)
{
    ChkInPatternStr(text);
    Init(text, engine);
}

DotWeavePattern::DotWeavePattern(const DotWeavePattern& other)
    : mEngine(other.mEngine), mTextVersion(other.mTextVersion)
{
    mEngine->AddHolder();
}

DotWeavePattern& DotWeavePattern::operator=(const DotWeavePattern& other)
{
    if (this == &other)
        return *this;
    // The new holder comes first, since both may share one engine already.
    other.mEngine->AddHolder();
    mEngine->RemoveHolder();
    mEngine = other.mEngine;
    mTextVersion = other.mTextVersion;
    return *this;
}

DotWeavePattern::~DotWeavePattern()
{
    Release(mEngine);
    mEngine = nullptr;
}

void DotWeavePattern::ChkInPatternStr(char* text)
{
    mTextVersion = CheckPatternText(text, zvk::split);
}

void DotWeavePattern::Init(char* text, Engine engine)
{
    EngineOwner loaded = MakeEngine(engine, mTextVersion);
    LoadEngine(*loaded, text);
    Release(mEngine);
    mEngine = loaded.release();
}

void DotWeavePattern::ResetRandomizer()
{
    mEngine->ResetRandomizer();
}

void DotWeavePattern::ApplyPattern(unsigned char* source, unsigned char* destination,
                                   unsigned long pixels)
{
    mEngine->ApplyPattern(source, destination, pixels);
}

int DotWeavePattern::GetInColorCount()
{
    return mEngine->GetInColorCount();
}

int DotWeavePattern::GetNumberOfStepsForInColor(int inColor)
{
    return mEngine->GetNumberOfStepsForInColor(inColor);
}

int DotWeavePattern::GetOutColorCount()
{
    return mEngine->GetOutColorCount();
}

} // namespace zvk::Pelkraft
