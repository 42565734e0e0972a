#pragma once

#include <string>

namespace zvk::Pelkraft::Client {

// Pieces of drawings in SVG. Names may hold anything, and come out as what XML can hold.
std::string SvgEscaped(const std::string& text);
// Two decimals.
std::string SvgNumber(double number);
std::string SvgText(double x, double baseline, int size, const std::string& words);
std::string SvgLine(double x1, double y1, double x2, double y2, const std::string& colour);

// A piece of a page, drawn from its own upper edge down.
struct SvgPart
{
    std::string body;
    int height = 0;
};

// Sets parts one below the other on a white page.
class SvgPage
{
public:
    explicit SvgPage(int newWidth) : width(newWidth) {}

    void Add(const SvgPart& part);
    std::string Finish() const;

private:
    int width;
    int height = 0;
    std::string body;
};

} // namespace zvk::Pelkraft::Client
