#include "pelkraft/image_row.h"
#include "zvk/diagnostics.h"

namespace zvk::Pelkraft {
namespace {

constexpr const wchar_t* fillFromContext =
    L"zvk::Pelkraft::ImageRow::FillFrom has thrown C++ exception: ";
constexpr const wchar_t* remapContext =
    L"zvk::Pelkraft::ImageRow::FillFromWithRemap has thrown C++ exception: ";
// The plural is part of the text that log readers search for.
constexpr const wchar_t* repeatContext =
    L"zvk::Pelkraft::ImageRow::FillFromWithPixelRepeats has thrown C++ exception: ";

template <typename Failure>
void LogFailure(const Failure& failure, const wchar_t* context)
{
    Diagnostics::StandardExceptionLogger::Log(failure, context, Diagnostics::Seh::GetDefaultLog());
}

// Logs what the body throws, in these five forms, and lets it pass unchanged.
template <typename Body>
void WithLog(const wchar_t* context, Body body)
{
    try {
        body();
    } catch (unsigned long code) {
        LogFailure(code, context);
        throw;
    } catch (const std::exception& failure) {
        LogFailure(failure, context);
        throw;
    } catch (const std::exception* failure) {
        LogFailure(failure, context);
        throw;
    } catch (const char* text) {
        LogFailure(text, context);
        throw;
    } catch (const wchar_t* text) {
        LogFailure(text, context);
        throw;
    }
}

} // namespace

ImageRow::OptionalParameters::OptionalParameters()
    : firstFlag(false), forcePortable(false), thirdFlag(true)
{}

ImageRow::OptionalParameters::OptionalParameters(bool newFirstFlag, bool newForcePortable)
    : firstFlag(newFirstFlag), forcePortable(newForcePortable), thirdFlag(true)
{}

void ImageRow::FillFrom(const ImageRow& source, const OptionalParameters* options)
{
    const OptionalParameters defaults;
    const OptionalParameters& chosen = options != nullptr ? *options : defaults;
    WithLog(fillFromContext, [&] { FillFromSehGuard(source, chosen); });
}

void ImageRow::FillFrom(const ImageRow& source, bool firstFlag, bool forcePortable)
{
    const OptionalParameters chosen(firstFlag, forcePortable);
    WithLog(fillFromContext, [&] { FillFromSehGuard(source, chosen); });
}

void ImageRow::FillFromWithRemap(const ImageRow& source, const int* map,
                                 const OptionalParameters* options)
{
    const OptionalParameters defaults;
    const OptionalParameters& chosen = options != nullptr ? *options : defaults;
    WithLog(remapContext, [&] { FillFromWithRemapSehGuard(source, map, chosen); });
}

void ImageRow::FillFromWithRemap(const ImageRow& source, const int* map, bool firstFlag,
                                 bool forcePortable)
{
    const OptionalParameters chosen(firstFlag, forcePortable);
    WithLog(remapContext, [&] { FillFromWithRemapSehGuard(source, map, chosen); });
}

void ImageRow::FillFromWithPixelRepeat(const ImageRow& source, int factor,
                                       const OptionalParameters* options)
{
    const OptionalParameters defaults;
    const OptionalParameters& chosen = options != nullptr ? *options : defaults;
    WithLog(repeatContext, [&] { FillFromWithPixelRepeatSehGuard(source, factor, chosen); });
}

void ImageRow::FillFromWithPixelRepeat(const ImageRow& source, int factor, bool firstFlag,
                                       bool forcePortable)
{
    const OptionalParameters chosen(firstFlag, forcePortable);
    WithLog(repeatContext, [&] { FillFromWithPixelRepeatSehGuard(source, factor, chosen); });
}

} // namespace zvk::Pelkraft
