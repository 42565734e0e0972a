#include "tools/pelkraft/finding_rules.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr Severity note = Severity::Note;
constexpr Severity warning = Severity::Warning;
constexpr Severity error = Severity::Error;

} // namespace

const std::vector<FindingRule>& FindingRules()
{
    static const std::vector<FindingRule> rules = {
        {"combinations-surplus", error, "The in-colours make more than 1024 combinations together",
         "Let steps share their weights, or use fewer alternatives."},
        {"draw-missing", warning,
         "There is nothing to draw, which old processors refuse at version 3",
         "Write VERSION 2, or give a step two alternatives."},
        {"entry-missing", error, "A value line has fewer entries than weights",
         "Write one entry, position-value, for each weight."},
        {"entry-plain", warning, "An entry names no position and sets position 0",
         "Write position-value, such as 0-64."},
        {"entry-surplus", error, "A value line has more entries than weights",
         "Give the ratio a weight for the entry, or leave the entry out."},
        {"field-skewed", warning, "The shares of the combinations have no common denominator",
         "Use weights with equal sums, or sums that divide each other."},
        {"header-missing", error, "The text doesn't begin with the word DotWeavePattern",
         "Begin it with this word, and save it as UTF-8 without a byte order mark."},
        {"in-colour-combinations-surplus", error, "An in-colour makes more than 32 combinations",
         "Let steps share their weights, or use fewer alternatives."},
        {"in-colour-dropped", error, "A second list of in-colours drops some of the first",
         "List all in-colours in one BEGIN_IN_COLORS."},
        {"in-colour-empty", warning, "An in-colour has no value line",
         "Write one for each step from 1."},
        {"in-colour-repeated", warning, "An in-colour is described twice",
         "Describe each in-colour in one block."},
        {"in-colour-undescribed", warning, "An in-colour is listed, and no block describes it",
         "Describe it between BEGIN_IN_COLOR and END_IN_COLOR, or drop it from the list."},
        {"in-colour-unknown", warning, "A block names an in-colour that isn't listed",
         "Correct its spelling, or list it in BEGIN_IN_COLORS."},
        {"in-colours-missing", error, "The pattern has no in-colour",
         "List one between BEGIN_IN_COLORS and END_IN_COLORS."},
        {"in-colours-surplus", error, "The pattern has more than 16 in-colours", "Use up to 16."},
        {"ink-fed-twice", warning, "Two places feed the same ink",
         "Feed each ink from one place in one in-colour."},
        {"ink-unfed", warning, "No in-colour feeds an ink",
         "Name it between BEGIN_INKS and END_INKS of an in-colour, or drop it from the list."},
        {"ink-unknown", warning, "An in-colour names an ink that isn't listed",
         "Correct its spelling, or list it in BEGIN_OUT_INKS."},
        {"inks-without-in-colour", error, "A list of inks stands in a block without an in-colour",
         "Name the in-colour after BEGIN_IN_COLOR, ahead of BEGIN_INKS."},
        {"keyword-case", error, "A keyword is written in another case of letters",
         "Write keywords in capitals, and the header word as DotWeavePattern."},
        {"keyword-glued", error, "Nothing parts a keyword from the word beside it",
         "Put a blank or a line end between them."},
        {"keyword-misspelt", error, "A word is a keyword but for a slip or two",
         "Correct its spelling, or begin a comment with #."},
        {"line-broken", warning, "A value line ends after its step number",
         "Write the ratio of the alternatives and an entry for each of them."},
        {"name-repeated", warning, "A name is listed twice", "List each name once."},
        {"name-separator", warning, "A name begins or ends with a comma or a semicolon",
         "Part names by blanks alone."},
        {"number-missing", error, "A keyword lacks its number", "Write a number after it."},
        {"number-odd", warning, "A word is read as a number that it isn't",
         "Write whole numbers in digits."},
        {"out-inks-missing", error, "The pattern has no out-ink",
         "List one between BEGIN_OUT_INKS and END_OUT_INKS."},
        {"out-inks-surplus", error, "The pattern has more than 16 out-inks", "Use up to 16."},
        {"places-surplus", warning,
         "A combination stores more values than the fast way to draw can",
         "Let inks use the same runs of values, or use fewer steps."},
        {"position-empty", warning, "An entry sets a position that holds no ink",
         "Count the known names between BEGIN_INKS and END_INKS from 0."},
        {"position-range", error, "A position is outside of 0 to 15",
         "Count the names between BEGIN_INKS and END_INKS from 0."},
        {"position-unused", warning, "No value line uses an ink of its in-colour",
         "Write entries with its position, or drop the ink from the in-colour."},
        {"positions-surplus", error, "An in-colour feeds more than 16 inks", "Shorten the list."},
        {"quote-open", warning, "Nothing closes a quote",
         "Write a second double quote after the name."},
        {"refused", error, "The text is refused", "Correct the other findings."},
        {"section-closed-wrongly", error, "A keyword closes another section than the open one",
         "Close each section with its own END_ keyword."},
        {"section-open", error, "A section is not closed",
         "Close each section with its own END_ keyword."},
        {"section-stray", warning, "A keyword closes nothing",
         "Open the list with its BEGIN_ keyword."},
        {"step-gap", error, "A step has no line, and a higher one has",
         "Write a line for each step from 1 to the highest."},
        {"step-range", error, "A step is outside of 0 to 7",
         "Use steps from 0 to 7; a pixel has at most 8 of them."},
        {"step-repeated", warning, "A step has two lines", "Keep one line for each step."},
        {"step-suffix", note, "The suffix + counts for the slow reference alone",
         "Leave it out: any higher step is taken as the highest anyway."},
        {"text-cut", warning, "A zero byte ends the text", "Save the pattern as plain text."},
        {"total-unreachable", warning, "Some combinations come too rarely, or never",
         "Write VERSION 3, or use weights whose sums share divisors."},
        {"total-wraps", warning, "The common denominator doesn't fit in 32 bits",
         "Use smaller weights, or weights whose sums share divisors."},
        {"value-range", warning, "A value is outside of 0 to 255", "Write a value from 0 to 255."},
        {"values-without-in-colour", warning, "Values stand in a block without an in-colour",
         "Name the in-colour after BEGIN_IN_COLOR, ahead of BEGIN_VALUES."},
        {"version-differs", warning, "The version is read twice, with two results",
         "Let the first VERSION in the text, comments included, be the only one."},
        {"version-high", warning, "A version above 3 is read as version 3",
         "Write VERSION 2 or VERSION 3."},
        {"version-low", error, "Values stand at a version that one engine alone takes",
         "Write VERSION 2 or VERSION 3 ahead of the first BEGIN_IN_COLOR."},
        {"version-missing", error, "The text holds no VERSION with a number",
         "Write VERSION 2 or VERSION 3 after the header word."},
        {"weight-sum", error, "The weights of a step are no ratio",
         "Write whole numbers above 0 joined by colons, such as 1:3."},
        {"weight-zero", warning, "An alternative of weight 0 never comes",
         "Leave it out, or give it a weight."},
        {"weights-apart", warning, "Two steps mean the same shares but are drawn apart",
         "Write the same ratio in both, to share the draw."},
        {"weights-parted", error, "Blanks part the weights of a ratio",
         "Write no blanks at the colons of a ratio."},
        {"weights-permuted", note, "Two steps have the same weights in another order",
         "Write the same ratio in both and move the entries, to share the draw."},
        {"weights-surplus", warning, "A ratio has more than 16 weights",
         "Use up to 16 alternatives in a step."},
        {"weights-together", note, "Two steps share their draw for inks in another order",
         "Keep the order of the inks, or double the weights of one to draw it apart."},
        {"word-skipped", warning, "A word stands outside of all sections and is skipped",
         "Begin a comment with #, and a list with its BEGIN_ keyword."},
    };
    return rules;
}

std::size_t RuleOfKind(const std::string& kind)
{
    const auto& rules = FindingRules();
    const auto found = std::lower_bound(rules.begin(), rules.end(), kind,
                                        [](const FindingRule& rule, const std::string& wanted) {
                                            return wanted.compare(rule.kind) > 0;
                                        });
    return static_cast<std::size_t>(found - rules.begin());
}

} // namespace zvk::Pelkraft::Client
