#include "tools/pelkraft/usage_errors.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/option_values.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

// The last verb that the command line names; the program itself without one.
const CLI::App& ChosenVerb(const CLI::App& program)
{
    const CLI::App* verb = &program;
    while (!verb->get_subcommands().empty())
        verb = verb->get_subcommands().front();
    return *verb;
}

std::string CommandOf(const CLI::App& verb)
{
    const CLI::App* const above = verb.get_parent();
    return above == nullptr ? verb.get_name() : CommandOf(*above) + ' ' + verb.get_name();
}

std::vector<std::string> VerbsBelow(const CLI::App& verb)
{
    std::vector<std::string> names;
    for (const CLI::App* below : verb.get_subcommands({}))
        names.push_back(below->get_name());
    return names;
}

// The question that a near name brings up, or the second text where none is near.
std::string Guess(const std::string& nearest, const std::string& otherwise)
{
    return nearest.empty() ? otherwise : ". Did you mean " + nearest + "?";
}

// The beginning of a name counts as near if it begins no other.
std::string NearOrBegun(const std::string& word, const std::vector<std::string>& names)
{
    const auto begun = [&](const std::string& name) { return name.starts_with(word); };
    if (word.size() > 2 && std::count_if(names.begin(), names.end(), begun) == 1)
        return *std::find_if(names.begin(), names.end(), begun);
    return NearestName(word, names);
}

std::string NearestOption(const std::string& word, const CLI::App& verb)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : verb.get_options())
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    const std::string bare = word.substr(std::min(word.find_first_not_of('-'), word.size()));
    const std::string nearest = NearOrBegun(bare, names);
    return nearest.empty() ? nearest : "--" + nearest;
}

bool IsOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

std::string WrongOption(const std::string& word, const CLI::App& verb)
{
    const std::string option = word.substr(0, word.find('='));
    return option + " is no option of " + CommandOf(verb) + Guess(NearestOption(option, verb), "");
}

std::string WrongVerb(const std::string& word, const CLI::App& verb)
{
    const std::vector<std::string> verbs = VerbsBelow(verb);
    return "there is no verb \"" + word + '"' +
           Guess(NearOrBegun(word, verbs), "; supported are " + Enumerated(verbs));
}

// Words that no verb and no option took.
std::string WrongWords(const CLI::App& program, const CLI::App& verb)
{
    std::vector<std::string> words = verb.remaining();
    const auto option = std::find_if(words.begin(), words.end(), IsOption);
    if (&verb == &program) {
        if (words.empty())
            return "a verb is missing; supported are " + Enumerated(VerbsBelow(program));
        return IsOption(words.front()) ? WrongOption(words.front(), verb)
                                       : WrongVerb(words.front(), verb);
    }
    if (option != words.end())
        return WrongOption(*option, verb);
    std::vector<std::string> names;
    for (const CLI::Option* taken : verb.get_options()) {
        if (!taken->get_positional())
            continue;
        names.push_back(taken->get_name(true));
        // A verb was perhaps meant if one can stand there.
        for (const std::string& word : taken->results())
            if (!NearOrBegun(word, VerbsBelow(verb)).empty())
                return WrongVerb(word, verb);
    }
    return '"' + words.front() + "\" is one word too many; " + CommandOf(verb) + " takes " +
           (names.empty() ? "options alone" : Enumerated(names));
}

// The option that the parser's text begins with; null if it is about none.
const CLI::Option* NamedOption(const CLI::App& verb, std::string text)
{
    constexpr std::string_view flagStart = "Could not convert: ";
    if (text.starts_with(flagStart))
        text.erase(0, flagStart.size());
    for (const CLI::Option* option : verb.get_options()) {
        const std::string name = option->get_name();
        if (text.starts_with(name + ':') || text.starts_with(name + ' '))
            return option;
    }
    return nullptr;
}

std::string Offer(const CLI::Option& option)
{
    const std::string words = ValuesOf(option).Words();
    if (!words.empty())
        return ValuesOf(option).names.size() == 1 ? "; supported is " + words
                                                  : "; supported are " + words;
    if (option.get_items_expected_max() == 0)
        return "; it takes no value";
    return option.get_type_name() == "INT" ? "; supported are whole numbers" : std::string();
}

std::string WrongCount(const CLI::Option& option)
{
    if (option.results().empty())
        return option.get_name() + " lacks its value" + Offer(option);
    return option.get_name() + " is given " + std::to_string(option.results().size()) +
           " times, which is more than it takes";
}

// Checks that declare their values need no words of the parser, all others have their own.
std::string WrongValue(const CLI::Option& option, const std::string& text)
{
    const std::string offer = Offer(option);
    if (offer.empty() || option.results().empty())
        return text;
    const std::vector<std::string> names = ValuesOf(option).names;
    const auto& results = option.results();
    const auto isOther = [&](const std::string& value) {
        return std::find(names.begin(), names.end(), value) == names.end();
    };
    const auto wrong = std::find_if(results.begin(), results.end() - 1, isOther);
    return option.get_name() + " can't be \"" + *wrong + '"' + offer;
}

std::string WrongPair(const std::string& text)
{
    const std::size_t needs = text.find(" requires ");
    if (needs != std::string::npos)
        return text.substr(0, needs) + " is of no use without " + text.substr(needs + 10);
    const std::size_t excludes = text.find(" excludes ");
    if (excludes != std::string::npos)
        return text.substr(0, excludes) + " and " + text.substr(excludes + 10) +
               " can't be given together";
    return text;
}

bool HasExtraWords(const CLI::App& program, const CLI::App& verb, const CLI::ParseError& error)
{
    const std::vector<std::string> words = verb.remaining();
    // A misspelt option explains whatever else is missing.
    return std::any_of(words.begin(), words.end(), IsOption) || &verb == &program ||
           dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
}

} // namespace

std::string NearestVerb(const std::string& word, const CLI::App& verb)
{
    return NearOrBegun(word, VerbsBelow(verb));
}

std::string UsageError(const CLI::App& program, const CLI::ParseError& error)
{
    const CLI::App& verb = ChosenVerb(program);
    const std::string text = error.what();
    if (&verb != &program && !program.remaining().empty())
        return program.remaining().front() + " stands before the verb; its options follow it";
    if (HasExtraWords(program, verb, error))
        return WrongWords(program, verb);
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        const std::size_t end = text.find(" is required");
        return end == std::string::npos ? text : text.substr(0, end) + " is missing";
    }
    const CLI::Option* const option = NamedOption(verb, text);
    if (option != nullptr && dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return WrongCount(*option);
    if (option != nullptr && (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr ||
                              dynamic_cast<const CLI::ConversionError*>(&error) != nullptr))
        return WrongValue(*option, text);
    return WrongPair(text);
}

void RefuseEmptyValues(const CLI::App& program, const std::vector<std::string>& words)
{
    // After an equals sign and nothing, the parser takes the next word.
    for (const std::string& word : words) {
        if (word.starts_with("--") && word.size() > 3 && word.find('=') == word.size() - 1)
            throw Failure(ExitCode::Usage, {}, word + " is given no value");
    }
    for (const CLI::Option* option : ChosenVerb(program).get_options()) {
        const auto& results = option->results();
        if (std::any_of(results.begin(), results.end(),
                        [](const std::string& value) { return value.empty(); }))
            throw Failure(ExitCode::Usage, {},
                          option->get_name() + " is given an empty value" + Offer(*option));
    }
}

std::string WithHelp(const CLI::App& program, const std::string& text)
{
    const std::string help = "See " + CommandOf(ChosenVerb(program)) + " --help";
    return text + (text.ends_with('?') ? " " : ". ") + help;
}

} // namespace zvk::Pelkraft::Client
