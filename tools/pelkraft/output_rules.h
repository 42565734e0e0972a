#pragma once

#include "tools/pelkraft/system_calls.h"

#include <string>

namespace zvk::Pelkraft::Client {

// The kinds of files that the program writes.
enum class FileKind
{
    // Whatever its ending says.
    Any,
    Tiff,
    Png,
    Svg,
    JsonText,
    Csv,
    Text,
};

struct OutputRules
{
    FileKind kind = FileKind::Any;
    // A file that exists is refused.
    bool noClobber = false;
};

// Refuses, as wrong usage, a name whose ending belongs to another kind of file. An ending that
// nobody knows is the user's own business.
void RefuseOtherEnding(const std::string& path, FileKind kind);

// Notes a file that is read, which is of this kind. One of another kind would end it if it took its
// place; one of its own kind is a new version of it.
void NoteInput(const FileIdentity& identity, FileKind kind);
// Refuses, as wrong usage, to write a file of this kind over one that was noted, by whatever name.
void RefuseInput(const std::string& path, const FileIdentity& identity, FileKind kind);
// No file is read any more.
void ForgetInputs();

} // namespace zvk::Pelkraft::Client
