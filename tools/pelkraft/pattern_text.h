#pragma once

#include "pattern/tokenizer.h"

#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// A pattern text and where its lines lie.
class PatternText
{
public:
    // Reads a regular file of up to 1 MiB. The advice is for who names a picture in its place.
    static PatternText Load(const std::string& path, const std::string& advice = {});
    PatternText(std::string newPath, const std::string& newBytes);

    const std::string& Path() const { return path; }
    // Up to the first zero byte, where a text ends for the library.
    const std::string& Bytes() const { return bytes; }
    bool EndsAtZero() const { return endsAtZero; }
    // "UTF-16" or "UTF-32" where the file is of wide characters, else empty.
    const std::string& WideCode() const { return wideCode; }

    TextPlace PlaceOf(std::size_t offset) const { return lines.PlaceOf(offset, bytes); }
    // Without its end; the line of a place that PlaceOf gave.
    std::string_view Line(int number) const { return lines.Line(number, bytes); }

private:
    std::string path;
    std::string bytes;
    bool endsAtZero;
    std::string wideCode;
    TextLines lines;
};

} // namespace zvk::Pelkraft::Client
