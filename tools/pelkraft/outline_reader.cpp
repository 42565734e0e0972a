#include "tools/pelkraft/outline_reader.h"

#include "tools/pelkraft/early_version.h"
#include "tools/pelkraft/outline_cursor.h"
#include "tools/pelkraft/value_line_reader.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* headerWord = "DotWeavePattern";
constexpr std::size_t mostCompared = 100;
constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

std::vector<std::string> Spellings(const std::map<std::string, NamedIndex>& names)
{
    std::vector<std::string> list;
    // No author looks for a name among more.
    for (auto name = names.begin(); name != names.end() && list.size() < mostCompared; ++name)
        list.push_back(name->second.spelling);
    return list;
}

class OutlineReader
{
public:
    OutlineReader(const PatternText& newText, Findings* findings)
        : text(newText), cursor(newText, findings)
    {}

    PatternOutline Read()
    {
        outline.earlyVersion = ReadEarlyVersion(text.Bytes(), outline.earlyVersionPlace);
        ReadHeader();
        // Without the header word the library reads nothing at all.
        if (!outline.hasHeader && !cursor.Guesses())
            return std::move(outline);
        while (const PatternWord* word = cursor.Next())
            ReadTopLevel(*word);
        TellOfStrayWords();
        const auto& words = cursor.Words();
        if (!words.empty() && words.back().openQuote)
            cursor.Warn("quote-open", words.back().place, "nothing closes this quote",
                        "write a second double quote behind the name");
        return std::move(outline);
    }

private:
    void ReadHeader()
    {
        const PatternWord* word = cursor.Next();
        const std::string hint = "begin the text with the word DotWeavePattern";
        if (word == nullptr) {
            cursor.Error("header-missing", {}, "the text holds no word", hint);
            return;
        }
        outline.hasHeader = word->text == headerWord;
        if (outline.hasHeader)
            return;
        if (word->text == byteOrderMark + std::string(headerWord)) {
            cursor.Error("header-missing", word->place,
                         "a byte order mark stands ahead of the header word",
                         "save the text as UTF-8 without a byte order mark");
        } else if (!cursor.Is(*word, headerWord)) {
            cursor.Error("header-missing", word->place,
                         Quoted(word->text) + " stands where the header word must", hint);
            if (KeywordInAnyCase(word->text) != nullptr)
                cursor.StepBack();
        }
    }

    void ReadTopLevel(const PatternWord& word)
    {
        if (cursor.Is(word, "VERSION")) {
            outline.versionPlace = word.place;
            outline.version = cursor.NextNumber(word, "version");
        } else if (cursor.Is(word, "BEGIN_OUT_INKS")) {
            ReadOutInks(word);
        } else if (cursor.Is(word, "BEGIN_IN_COLORS")) {
            ReadInColours(word);
        } else if (cursor.Is(word, "BEGIN_IN_COLOR")) {
            ReadInColour(word);
        } else if (cursor.Is(word, "RANDOM_SEED")) {
            outline.seed = cursor.NextNumber(word, "seed");
        } else if (word.text != headerWord) {
            strayCount += stray == nullptr ? 0 : 1;
            stray = stray == nullptr ? &word : stray;
            return;
        }
        TellOfStrayWords();
    }

    // Words without a keyword between them are told of together.
    void TellOfStrayWords()
    {
        if (stray == nullptr)
            return;
        const std::string nearest = NearestKeyword(stray->text);
        const std::string more =
            strayCount == 0   ? ""
            : strayCount == 1 ? ", and so is the word behind it"
                              : ", and so are " + std::to_string(strayCount) + " words behind it";
        cursor.Warn("word-skipped", stray->place,
                    Quoted(stray->text) + " stands outside of all sections and is skipped" + more,
                    nearest.empty() ? "begin a comment with #, and a list with its BEGIN_ keyword"
                                    : "did you mean " + nearest + "?");
        stray = nullptr;
        strayCount = 0;
    }

    // The words of a list up to its closing keyword. Tells whether that was met.
    template <typename Take>
    bool ReadList(const PatternWord& opening, const char* closing, Take take)
    {
        while (const PatternWord* word = cursor.Next()) {
            if (cursor.EndsSection(*word, opening, closing))
                return true;
            take(*word);
        }
        cursor.TellOfOpenSection(opening, closing);
        return false;
    }

    void Enter(std::map<std::string, NamedIndex>& names, const PatternWord& word, int index)
    {
        const auto [entry, isNew] = names.try_emplace(UpperCased(word.text));
        if (!isNew)
            cursor.Warn("name-repeated", word.place,
                        Quoted(word.text) +
                            " is listed already; it keeps one entry, and takes the later place",
                        "list each name once");
        entry->second = {word.text, index, word.place};
    }

    void ReadOutInks(const PatternWord& opening)
    {
        outline.outInksPlace = opening.place;
        int index = 0;
        ReadList(opening, "END_OUT_INKS",
                 [&](const PatternWord& word) { Enter(outline.outInkNames, word, index++); });
    }

    void ReadInColours(const PatternWord& opening)
    {
        outline.inColoursPlace = opening.place;
        outline.inColours.clear();
        int count = 0;
        const bool closed = ReadList(opening, "END_IN_COLORS", [&](const PatternWord& word) {
            Enter(outline.inColourNames, word, count++);
        });
        if (!closed && !cursor.Guesses())
            return;

        // Names of an earlier list have no record in the library, which refuses that.
        int records = count;
        for (const auto& [upper, entry] : outline.inColourNames)
            records = std::max(records, entry.index + 1);
        if (records > count || outline.InColourCount() > count)
            cursor.Error("in-colour-dropped", opening.place,
                         "this second list drops in-colours of the first one",
                         "list all in-colours in one BEGIN_IN_COLORS");
        outline.inColours.resize(static_cast<std::size_t>(records));
        for (const auto& [upper, entry] : outline.inColourNames) {
            InColour& inColour = outline.inColours[static_cast<std::size_t>(entry.index)];
            inColour.name = entry.spelling;
            inColour.listed = entry.place;
        }
    }

    void ReadInColour(const PatternWord& opening)
    {
        InColour* selected = nullptr;
        bool named = false;
        while (const PatternWord* word = cursor.Next()) {
            if (cursor.Is(*word, "BEGIN_INKS")) {
                ReadInks(*word, selected);
            } else if (cursor.Is(*word, "BEGIN_VALUES")) {
                ReadValues(*word, selected, named);
            } else if (cursor.Guesses() &&
                       (word->text == "END_INKS" || word->text == "END_VALUES")) {
                cursor.Warn("section-stray", word->place, word->text + " closes nothing here",
                            "open the list with BEGIN_" + word->text.substr(4));
            } else if (cursor.EndsSection(*word, opening, "END_IN_COLOR")) {
                return;
            } else {
                named = true;
                selected = Select(*word, selected);
            }
        }
        cursor.TellOfOpenSection(opening, "END_IN_COLOR");
    }

    InColour* Select(const PatternWord& word, InColour* present)
    {
        const auto found = outline.inColourNames.find(UpperCased(word.text));
        if (found == outline.inColourNames.end()) {
            TellOfUnknown(word, "in-colour-unknown", "BEGIN_IN_COLORS", outline.inColourNames,
                          "selects no in-colour");
            return present;
        }
        const auto index = static_cast<std::size_t>(found->second.index);
        if (index >= outline.inColours.size())
            return present;
        InColour& inColour = outline.inColours[index];
        if (inColour.described)
            cursor.Warn("in-colour-repeated", word.place,
                        Quoted(word.text) + " is described already",
                        "describe each in-colour in one block");
        inColour.described = word.place;
        Step& lowest = inColour.steps[0];
        lowest.count = 1;
        if (lowest.alternatives.empty())
            lowest.alternatives.resize(1);
        return &inColour;
    }

    void TellOfUnknown(const PatternWord& word, const char* kind, const std::string& list,
                       const std::map<std::string, NamedIndex>& names, const std::string& effect)
    {
        if (!cursor.Listens())
            return;
        std::string nearest = NearestName(word.text, Spellings(names));
        const std::string keyword = NearestKeyword(word.text);
        if (nearest.empty() && !keyword.empty())
            nearest = keyword;
        const std::string hint = "list it in " + list;
        cursor.Warn(kind, word.place,
                    Quoted(word.text) + " is not listed in " + list + " and " + effect,
                    nearest.empty() ? hint : "did you mean " + nearest + "? Otherwise " + hint);
    }

    void ReadInks(const PatternWord& opening, InColour* selected)
    {
        std::size_t position = 0;
        bool told = false;
        const bool closed = ReadList(opening, "END_INKS", [&](const PatternWord& word) {
            const auto found = outline.outInkNames.find(UpperCased(word.text));
            if (found == outline.outInkNames.end()) {
                TellOfUnknown(word, "ink-unknown", "BEGIN_OUT_INKS", outline.outInkNames,
                              "takes no position, which moves the names behind it");
            } else if (selected == nullptr) {
                if (!told)
                    cursor.Error("inks-without-in-colour", opening.place,
                                 "this list stands in a block without a known in-colour",
                                 "name the in-colour behind BEGIN_IN_COLOR, ahead of BEGIN_INKS");
                told = true;
            } else {
                Feed(*selected, position++, found->second.index, word);
            }
        });
        if (selected != nullptr && closed)
            selected->inkCount = std::min<std::size_t>(position, positionLimit);
    }

    void Feed(InColour& inColour, std::size_t position, int outInk, const PatternWord& word)
    {
        if (position >= positionLimit) {
            if (position == positionLimit)
                cursor.Error("positions-surplus", word.place,
                             "an in-colour feeds at most 16 inks, and this is one more",
                             "shorten the list");
            return;
        }
        const int self = static_cast<int>(&inColour - outline.inColours.data());
        const auto before = outline.feeders.find(outInk);
        if (before != outline.feeders.end()) {
            const std::string& feeder =
                outline.inColours[static_cast<std::size_t>(before->second)].name;
            cursor.Warn("ink-fed-twice", word.place,
                        before->second == self
                            ? Quoted(word.text) + " stands in this list twice"
                            : Quoted(word.text) + " is fed by in-colour " + Quoted(feeder) +
                                  " already; the values of one of the two are lost",
                        "feed each ink from one place in one in-colour");
        }
        if (inColour.inks.size() <= position)
            inColour.inks.resize(position + 1);
        inColour.inks[position] = {outInk, word.place};
        outline.feeders[outInk] = self;
    }

    void ReadValues(const PatternWord& opening, InColour* selected, bool named)
    {
        if (selected != nullptr) {
            ValueLineReader(cursor, outline.version, toldOfVersion).ReadInto(*selected, opening);
            return;
        }
        if (!named)
            cursor.Warn("values-without-in-colour", opening.place,
                        "these values stand in a block that names no in-colour, and are skipped",
                        "name the in-colour behind BEGIN_IN_COLOR, ahead of BEGIN_VALUES");
        ReadList(opening, "END_VALUES", [](const PatternWord&) {});
    }

    const PatternText& text;
    OutlineCursor cursor;
    PatternOutline outline;
    bool toldOfVersion = false;
    const PatternWord* stray = nullptr;
    int strayCount = 0;
};

} // namespace

PatternOutline ReadOutline(const PatternText& text)
{
    return OutlineReader(text, nullptr).Read();
}

PatternOutline ReadIntention(const PatternText& text, Findings& findings)
{
    return OutlineReader(text, &findings).Read();
}

} // namespace zvk::Pelkraft::Client
