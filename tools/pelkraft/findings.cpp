#include "tools/pelkraft/findings.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Longer lines are shown from and up to here around the place.
constexpr std::size_t longestShown = 160;
constexpr std::size_t shownBefore = 60;
constexpr std::size_t longestQuoted = 40;

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Bytes of the character of UTF-8 at the front; 0 if it acts on a terminal, or is none.
std::size_t CharacterBytes(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return (lead < 0x20 && lead != '\t') || lead == 0x7F ? 0 : 1;
    const std::size_t bytes = lead < 0xC2   ? 0
                              : lead < 0xE0 ? 2
                              : lead < 0xF0 ? 3
                              : lead < 0xF5 ? 4
                                            : 0;
    if (text.size() < bytes)
        return 0;
    for (std::size_t i = 1; i < bytes; ++i)
        if (!IsContinuation(text[i]))
            return 0;
    const bool isControl = lead == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
    return isControl ? 0 : bytes;
}

// There are as many marks as characters, and tabs stay.
std::string Marks(std::string_view piece, char mark)
{
    std::string marks;
    for (const char byte : Shown(piece)) {
        if (!IsContinuation(byte))
            marks += byte == '\t' && mark == ' ' ? '\t' : mark;
    }
    return marks;
}

// A piece of a line, and where in it the place begins.
struct LinePiece
{
    std::string_view text;
    std::size_t start = 0;
};

LinePiece PieceAt(const Finding& finding, const PatternText& text)
{
    const TextPlace place = text.PlaceOf(finding.place.offset);
    LinePiece piece = {text.Line(place.line), 0};
    const auto lineOffset = static_cast<std::size_t>(piece.text.data() - text.Bytes().data());
    piece.start = std::min(finding.place.offset - lineOffset, piece.text.size());
    if (piece.text.size() <= longestShown)
        return piece;
    std::size_t cut = piece.start > shownBefore ? piece.start - shownBefore : 0;
    while (cut > 0 && IsContinuation(piece.text[cut]))
        --cut;
    piece.text = piece.text.substr(cut, longestShown);
    piece.start -= cut;
    return piece;
}

std::string LineWithCaret(const Finding& finding, const PatternText& text)
{
    const LinePiece piece = PieceAt(finding, text);
    std::string caret = Marks(piece.text.substr(piece.start, finding.place.length), '~');
    if (caret.empty())
        caret.push_back('^');
    caret.front() = '^';
    return "    " + Shown(piece.text) + "\n    " + Marks(piece.text.substr(0, piece.start), ' ') +
           caret + "\n";
}

} // namespace

const char* SeverityName(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return "note";
    case Severity::Warning:
        return "warning";
    default:
        return "error";
    }
}

void AddFinding(Findings& findings, Severity severity, const char* kind, TextSpan place,
                std::string message, std::string hint, std::optional<std::string> replacement)
{
    if (findings.size() < mostFindings)
        findings.push_back(
            {severity, kind, place, std::move(message), std::move(hint), std::move(replacement)});
}

void SortFindings(Findings& findings)
{
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return a.place.offset != b.place.offset ? a.place.offset < b.place.offset
                                                : a.severity > b.severity;
    });
}

std::size_t CountFindings(const Findings& findings, Severity severity)
{
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(),
                      [=](const Finding& finding) { return finding.severity == severity; }));
}

std::string FindingWords(const Finding& finding, const PatternText& text)
{
    const TextPlace place = text.PlaceOf(finding.place.offset);
    std::string words = Shown(text.Path()) + ":" + std::to_string(place.line) + ":" +
                        std::to_string(place.column) + ": ";
    words += std::string(SeverityName(finding.severity)) + ": " + Shown(finding.message) + "\n";
    words += LineWithCaret(finding, text);
    return words + "    hint: " + Shown(finding.hint) + "\n";
}

std::string_view FindingLine(const Finding& finding, const PatternText& text)
{
    return PieceAt(finding, text).text;
}

std::string Quoted(const std::string& word)
{
    if (word.size() <= longestQuoted)
        return "\"" + word + "\"";
    return "\"" + word.substr(0, longestQuoted) + "...\"";
}

std::string Counted(std::size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Shown(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const std::size_t bytes = CharacterBytes(text);
        if (bytes == 0)
            shown += '?';
        else
            shown += text.substr(0, bytes);
        text.remove_prefix(std::max<std::size_t>(bytes, 1));
    }
    return shown;
}

} // namespace zvk::Pelkraft::Client
