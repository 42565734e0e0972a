#include "tools/pelkraft/findings.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Longer lines are shown from and up to here around the place.
constexpr std::size_t longestShown = 160;
constexpr std::size_t shownBefore = 60;
constexpr std::size_t longestQuoted = 40;

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

} // namespace zvk::Pelkraft::Client
