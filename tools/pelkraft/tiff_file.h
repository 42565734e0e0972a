#pragma once

#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/page_groups.h"
#include "tools/pelkraft/tiff_stream.h"

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The messages of libtiff about one file, kept from the standard error stream.
struct TiffMessages
{
    std::string error;
    PageGroups warnings;
    int page = 1;
};

// An open TIFF file of libtiff, closed at the end of the scope.
class TiffFile
{
public:
    // Opens a file at its first page. What comes through a pipe is kept in a file first.
    static TiffFile OpenForReading(const std::string& path, const Spool& spool = {});
    // Writes to an open file, which it closes; big takes the form for more than 4 GB.
    static TiffFile OpenForWriting(int descriptor, const std::string& shownPath, bool big);
    // Writes so many pages into a pipe, which it closes. Each page's tags are set, then its
    // directory is sent, and then its strips.
    static TiffFile OpenForSending(int descriptor, const std::string& shownPath, bool big,
                                   int pages);
    // A second handle of the same file, at the same page. It reads in place where mapping can.
    TiffFile OpenAgain(const MappedFile& mapping) const;

    TIFF* Get() const { return handle.get(); }
    const std::string& Path() const { return path; }
    // Bytes of the file at the time of opening; of one that is being written, so far.
    std::uint64_t Size() const { return stream->Size(); }
    int Descriptor() const { return stream->Descriptor(); }
    // With the pages that they are about.
    std::vector<std::string> Warnings() const;
    bool HasSeveralPages() const { return severalPages; }

    // Goes on to the page after this one, counted from 1. False after the last one.
    bool NextPage(int page) const;
    void FirstPage() const;

    bool IsPipe() const { return stream->IsPipe(); }
    void SendDirectory(const StripRun& strips) const;
    void SendBytes(const void* bytes, std::size_t count) const;

    // Ends reading, after which only the path and the warnings can be asked for: not every system
    // replaces a file that is open.
    void Close();
    // Ends writing: everything is stored, or that is a failure.
    void Finish();
    // Throws if something could not be read, even where libtiff did without it.
    void RequireSound() const;

    // A failure of this file: the text, then the last message of libtiff. Where reading or
    // writing failed, that is the failure; where memory was missing, it is std::bad_alloc.
    [[noreturn]] void Throw(ExitCode code, const std::string& text) const;

private:
    [[noreturn]] void ThrowDamage(const std::string& seen, const std::string& text) const;

    struct CloseHandle
    {
        void operator()(TIFF* file) const { TIFFClose(file); }
    };

    TiffFile(std::unique_ptr<TiffStream> newStream, const std::string& newPath, const char* mode);

    std::string path;
    bool writing;
    bool severalPages = false;
    // At fixed addresses: libtiff keeps pointers to them.
    std::unique_ptr<TiffMessages> messages;
    std::unique_ptr<TiffStream> stream;
    std::unique_ptr<TIFF, CloseHandle> handle;
};

// True if a file with so many bytes of samples needs the form for more than 4 GB.
bool NeedsBigForm(std::uint64_t sampleBytes);

} // namespace zvk::Pelkraft::Client
