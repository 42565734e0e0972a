#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A kind of finding. The texts are for people.
struct SarifRule
{
    std::string id;
    // "error", "warning" or "note"; findings bear it unless they have a level of their own.
    std::string level;
    std::string summary;
    std::string help;
};

// A place in a text. Columns count code points from 1; the end is the one after the last.
struct SarifRegion
{
    int line = 1;
    int column = 1;
    int endLine = 1;
    int endColumn = 1;
    std::size_t byteOffset = 0;
    std::size_t byteLength = 0;
    // The line, or a piece of it.
    std::string snippet;
};

struct SarifResult
{
    // The index of its rule.
    std::size_t rule = 0;
    std::string level;
    std::string message;
    std::string path;
    std::optional<SarifRegion> region;
    // A part of the file that has no lines, such as "page 2", or nothing.
    std::string part;
    // Stays the same where other things in the file change.
    std::string fingerprint;
    // Words to put in place of the region, where that is safe, and what that does.
    std::optional<std::string> replacement;
    std::string replacementWords;
};

// The same for the same kind, content and count: count tells apart findings that are equal in both.
std::string SarifFingerprint(const std::string& rule, const std::string& content,
                             std::size_t count);

// A log of SARIF 2.1.0 with one run, for programs.
std::string SarifLog(const std::vector<SarifRule>& rules, const std::vector<SarifResult>& results,
                     int exitCode);

} // namespace zvk::Pelkraft::Client
