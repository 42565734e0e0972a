#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// A piece of a pattern text, in bytes.
struct TextSpan
{
    std::size_t offset = 0;
    std::size_t length = 0;
};

// As editors count: from 1, a character of several bytes once, a tab once.
struct TextPlace
{
    int line = 1;
    int column = 1;
};

// A pattern text and where its lines lie.
class PatternText
{
public:
    // Reads a regular file of up to 1 MiB.
    static PatternText Load(const std::string& path);
    PatternText(std::string newPath, std::string newBytes);

    const std::string& Path() const { return path; }
    // Up to the first zero byte, where a text ends for the library.
    const std::string& Bytes() const { return bytes; }
    bool EndsAtZero() const { return endsAtZero; }

    TextPlace PlaceOf(std::size_t offset) const;
    // Without its end; the line of a place that PlaceOf gave.
    std::string_view Line(int number) const;

private:
    std::string path;
    std::string bytes;
    bool endsAtZero = false;
    std::vector<std::size_t> lineStarts;
};

} // namespace zvk::Pelkraft::Client
