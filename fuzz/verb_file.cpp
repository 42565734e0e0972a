#include "fuzz/verb_folder.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

// Any bytes as the file of one verb of the program, which PELKRAFT_FUZZED_VERB names, with options
// that the first bytes choose.
namespace zvk::Pelkraft::Client {
namespace {

Words ConvertLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"convert", folder.Name("in"), folder.Name("out")};
    choices.Add(words, {{}, {"--layout", "planar"}, {"--layout", "interleaved"}});
    choices.Add(words, {{}, {"--bits", "8"}, {"--bits", "1"}, {"--bits", "2"}, {"--bits", "16"}});
    choices.Add(
        words,
        {{}, {"--mirror"}, {"--repeat", "2"}, {"--repeat", "4", "--mirror"}, {"--portable"}});
    choices.Add(words, {{},
                        {"--channels", "0"},
                        {"--channels", "2,-,1,0"},
                        {"--tones", "raw"},
                        {"--dot-range", "full"},
                        {"--dot-range", "scale"},
                        {"--polarity", "ink-high"}});
    choices.Add(words, {{"--threads", "1"},
                        {"--threads", "2", "--explain"},
                        {"--threads", "1", "--explain", "--json", "--page", "2"},
                        {"--threads", "1", "--compress", "zip", "-v"}});
    return words;
}

Words SimulateLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"simulate", folder.Name("pattern.txt"), folder.Name("in"), folder.Name("out")};
    // The reference engine refuses several pages.
    choices.Add(words, {{}, {"--engine", "reference"}, {"--engine", "x86"}, {"--pages"}});
    choices.Add(words, {{}, {"--levels", "raw"}, {"--levels", "quantize"}, {"--levels", "dither"}});
    choices.Add(words, {{}, {"--preview", folder.Name("preview")}, {"--polarity", "ink-low"}});
    choices.Add(words, {{}, {"--origin", "5,7"}, {"--dot-range", "250,3"}});
    choices.Add(words, {{"--threads", "1"}, {"--threads", "2", "--explain"}});
    return words;
}

Words PatternLine(Choices& choices, const VerbFolder& folder)
{
    const std::string in = folder.Name("in");
    Words words{"pattern"};
    choices.Add(words, {{in},
                        {in, "--json"},
                        {in, "--plot", folder.Name("out")},
                        {"explain", in, "--format", "json"},
                        {"lint", in, "--format", "sarif"},
                        {"lint", in},
                        {"plot", in, "--output", folder.Name("out")},
                        {"fix", in, "--output", folder.Name("out")},
                        {"diff", in, folder.Name("pattern.txt")},
                        {"diff", folder.Name("pattern.txt"), in, "--format", "json"}});
    return words;
}

Words InfoLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"info", folder.Name("in")};
    choices.Add(words, {{}, {"--json"}});
    choices.Add(words, {{}, {"--stats"}});
    choices.Add(words, {{}, {"--polarity", "ink-low"}, {"--dot-range", "3,250"}, {"--page", "2"}});
    return words;
}

Words JoinLine(Choices& choices, const VerbFolder& folder)
{
    const std::string in = folder.Name("in");
    const std::string plate = folder.Name("plate");
    Words words{"join", folder.Name("out")};
    choices.Add(words, {{"Cyan=" + in},
                        {"Cyan=" + in, "Black=" + in},
                        {"Gold=" + in, "Cyan=" + plate},
                        {"Cyan=" + plate, in}});
    choices.Add(words, {{}, {"--polarity", "ink-high"}, {"--dot-range", "250,3"}});
    choices.Add(words, {{}, {"--compress", "lzw"}, {"--explain", "--json"}, {"--page", "1"}});
    return words;
}

Words SplitLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"split", folder.Name("in"), folder.Name("out")};
    choices.Add(words, {{}, {"--naming", "dot"}});
    choices.Add(words, {{}, {"--inks", "0"}, {"--inks", "1,0"}});
    choices.Add(words, {{}, {"--polarity", "ink-low"}, {"--explain"}, {"--page", "1"}});
    return words;
}

Words CoverageLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"coverage", folder.Name("in")};
    choices.Add(words, {{}, {"--limit", "120"}, {"--window", "2px"}, {"--window", "1in"}});
    choices.Add(words, {{}, {"--map", folder.Name("out")}, {"--json"}});
    choices.Add(words, {{}, {"--polarity", "ink-high"}, {"--dot-range", "3,250"}, {"--page", "2"}});
    return words;
}

Words PreviewLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"preview", folder.Name("in"), folder.Name("out")};
    choices.Add(words, {{}, {"--gain", "20"}, {"--crop", "1,2,5,3"}, {"--crop", "0,0,1,1"}});
    choices.Add(words, {{}, {"--print-order", "Black,Cyan"}, {"--inks", folder.Name("in")}});
    choices.Add(words, {{}, {"--polarity", "ink-low"}, {"--page", "2"}, {"--explain"}});
    return words;
}

Words CheckLine(Choices& choices, const VerbFolder& folder)
{
    Words words{"check", folder.Name("in")};
    choices.Add(words, {{}, {"--format", "json"}, {"--format", "sarif"}});
    return words;
}

struct Verb
{
    std::string_view name;
    Words (*makeLine)(Choices& choices, const VerbFolder& folder);
};

constexpr Verb verbs[] = {
    {"check", CheckLine},     {"convert", ConvertLine},   {"simulate", SimulateLine},
    {"pattern", PatternLine}, {"info", InfoLine},         {"join", JoinLine},
    {"split", SplitLine},     {"coverage", CoverageLine}, {"preview", PreviewLine}};

constexpr const Verb& FuzzedVerb()
{
    for (const Verb& verb : verbs) {
        if (verb.name == PELKRAFT_FUZZED_VERB)
            return verb;
    }
    throw "no such verb";
}

} // namespace
} // namespace zvk::Pelkraft::Client

// Six bytes choose the options, the first of them none; the file follows them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    using namespace zvk::Pelkraft::Client;
    constexpr std::size_t choiceBytes = 6;
    if (count < choiceBytes)
        return -1;
    static const VerbFolder folder;
    static constexpr const Verb& verb = FuzzedVerb();
    folder.WriteInput(bytes + choiceBytes, count - choiceBytes);
    Choices choices(bytes + 1, choiceBytes - 1);
    folder.Check(verb.makeLine(choices, folder));
    return 0;
}
