#pragma once

#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace zvk::Pelkraft::Client {

// The values that an option takes, as its checks declare them.
struct OptionValues
{
    // All there are, or none where any text may do.
    std::vector<std::string> names;
    // The ends of a range of numbers; empty where there is none.
    std::string least;
    std::string most;

    // "auto, never and json", "1 to 256"; empty where nothing is declared.
    std::string Words() const;
    // "auto|never|json", "1..256"; empty where nothing is declared.
    std::string Sign() const;
};

OptionValues ValuesOf(const CLI::Option& option);

std::string Joined(const std::vector<std::string>& names, const std::string& between);
// Joins names by commas and an "and".
std::string Enumerated(const std::vector<std::string>& names);

} // namespace zvk::Pelkraft::Client
