#include "tools/pelkraft/tiff_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_damage.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <new>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// More of them say nothing new.
constexpr std::size_t mostWarnings = 8;
// libtiff may allocate so much at once for tables that a file declares.
constexpr tmsize_t largestTable = tmsize_t{1} << 30;
// A file of the old form can't point beyond 4 GB; what tags and tables take is well below this.
constexpr std::uint64_t largestPlainFile = (std::uint64_t{1} << 32) - (std::uint64_t{64} << 20);

std::string Format(const char* format, va_list arguments)
{
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

// Nothing may be thrown through libtiff, which is C: without memory for a message the program ends.
int NoteError(TIFF*, void* userData, const char*, const char* format, va_list arguments) noexcept
{
    static_cast<TiffMessages*>(userData)->error = Format(format, arguments);
    return 1;
}

int NoteWarning(TIFF*, void* userData, const char*, const char* format, va_list arguments) noexcept
{
    auto& messages = *static_cast<TiffMessages*>(userData);
    const std::string text = Format(format, arguments);
    // Inks beyond the fourth are no extra samples to us, whatever libtiff makes of them.
    if (text.find("Defining non-color channels as ExtraSamples") != std::string::npos)
        return 1;
    // Pairs for all channels are read by others; an odd number of samples makes no sense.
    if (text.find("field \"DotRange\", expected 2") != std::string::npos && text.back() % 2 == 0)
        return 1;
    if (messages.warnings.All().size() < mostWarnings || messages.warnings.Has(text))
        messages.warnings.Add(messages.page, text);
    return 1;
}

struct FreeOptions
{
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffFile::TiffFile(std::unique_ptr<TiffStream> newStream, const std::string& newPath,
                   const char* mode)
    : path(newPath), writing(mode[0] == 'w'), messages(std::make_unique<TiffMessages>()),
      stream(std::move(newStream))
{
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (options == nullptr)
        throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), largestTable);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), NoteError, messages.get());
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), NoteWarning, messages.get());
    handle.reset(stream->Open(path, mode, options.get()));
}

TiffFile TiffFile::OpenForReading(const std::string& path, const Spool& spool)
{
    InputFile input(path, FileKind::Tiff, spool);
    TiffFile file(std::make_unique<TiffStream>(input.TakeDescriptor(), input.Size()), path, "r");
    if (!file.handle)
        file.ThrowDamage(DamageWords({file.Descriptor(), file.Size(), 0}),
                         "can't be read as a TIFF file; supported are TIFF and BigTIFF");
    file.severalPages = TIFFLastDirectory(file.Get()) == 0;
    return file;
}

TiffFile TiffFile::OpenForWriting(int descriptor, const std::string& shownPath, bool big)
{
    TiffFile file(std::make_unique<TiffStream>(descriptor, 0), shownPath, big ? "w8" : "w");
    if (!file.handle)
        file.Throw(ExitCode::ReadWrite, "cannot be written");
    return file;
}

TiffFile TiffFile::OpenForSending(int descriptor, const std::string& shownPath, bool big, int pages)
{
    auto stream = std::make_unique<TiffStream>(descriptor, HeldDirectory(big, pages));
    TiffFile file(std::move(stream), shownPath, big ? "w8" : "w");
    if (!file.handle)
        file.Throw(ExitCode::ReadWrite, "cannot be written");
    return file;
}

TiffFile TiffFile::OpenAgain(const MappedFile& mapping) const
{
    TiffFile file(std::make_unique<TiffStream>(*stream, mapping), path, "r");
    if (!file.handle || TIFFSetDirectory(file.Get(), TIFFCurrentDirectory(Get())) != 1)
        file.Throw(ExitCode::BadInput, "can't be read a second time");
    return file;
}

std::vector<std::string> TiffFile::Warnings() const
{
    std::vector<std::string> texts;
    for (const PageGroup& group : messages->warnings.All())
        texts.push_back(PageCountWords(group.pages, severalPages) + group.text);
    return texts;
}

bool TiffFile::NextPage(int page) const
{
    if (TIFFLastDirectory(Get()) != 0)
        return false;
    messages->page = page + 1;
    const std::uint64_t offset = TIFFCurrentDirOffset(Get());
    if (TIFFReadDirectory(Get()) != 1)
        ThrowDamage(NextPageDamageWords({Descriptor(), Size(), 0}, offset, page + 1),
                    "has a page " + std::to_string(page + 1) + " that can't be read");
    return true;
}

void TiffFile::FirstPage() const
{
    messages->page = 1;
    if (TIFFSetDirectory(Get(), 0) != 1)
        Throw(ExitCode::BadInput, "can't be read a second time");
}

void TiffFile::SendDirectory(const StripRun& strips) const
{
    stream->StartDirectory();
    // The check makes room for the strips' offsets, which nobody writes.
    if (TIFFWriteCheck(Get(), 0, "pelkraft") != 1 || TIFFWriteDirectory(Get()) != 1)
        Throw(ExitCode::ReadWrite, "cannot be written");
    stream->SendDirectory(strips);
    RequireSound();
}

void TiffFile::SendBytes(const void* bytes, std::size_t count) const
{
    stream->Send(bytes, count);
    RequireSound();
}

void TiffFile::Close()
{
    handle.reset();
    stream.reset();
}

void TiffFile::Finish()
{
    handle.reset();
    stream->Store();
    RequireSound();
}

void TiffFile::RequireSound() const
{
    if (!stream->Failure().empty())
        Throw(ExitCode::ReadWrite, {});
}

void TiffFile::Throw(ExitCode code, const std::string& text) const
{
    const std::string failure = stream->Failure();
    if (!failure.empty())
        throw Failure(ExitCode::ReadWrite, path,
                      (writing ? "cannot be written: " : "cannot be read: ") + failure);
    // Decoders and encoders report missing memory here alone.
    if (errno == ENOMEM)
        throw std::bad_alloc();
    const std::string& said = messages->error;
    throw Failure(code, path, said.empty() ? text : text + " (" + said + ")");
}

// The file itself says more than the parser, which only missed something.
void TiffFile::ThrowDamage(const std::string& seen, const std::string& text) const
{
    if (seen.empty() || !stream->Failure().empty())
        Throw(ExitCode::BadInput, text);
    throw Failure(ExitCode::BadInput, path, seen);
}

bool NeedsBigForm(std::uint64_t sampleBytes)
{
    return sampleBytes > largestPlainFile;
}

} // namespace zvk::Pelkraft::Client
