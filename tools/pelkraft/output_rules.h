#pragma once

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
    Json,
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

} // namespace zvk::Pelkraft::Client
