#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace zvk::Pelkraft::Client {

// Tells in a sentence what is wrong with a command line that the parser refused, and what would do.
std::string UsageError(const CLI::App& program, const CLI::ParseError& error);

// The verb below this one that a misspelt or unfinished word means; empty where none is near.
std::string NearestVerb(const std::string& word, const CLI::App& verb);

// Refuses, among the words of a command line that was read, "--bits=" and "--channels ''".
void RefuseEmptyValues(const CLI::App& program, const std::vector<std::string>& words);

// The text with a last sentence that names the help of the verb that was chosen.
std::string WithHelp(const CLI::App& program, const std::string& text);

} // namespace zvk::Pelkraft::Client
