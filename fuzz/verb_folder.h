#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

using Words = std::vector<std::string>;

// A folder of this process alone, in memory where the machine has such a place. It holds a good
// pattern and a good plate; what is tried is written as "in".
class VerbFolder
{
public:
    VerbFolder();
    ~VerbFolder();
    VerbFolder(const VerbFolder&) = delete;
    VerbFolder& operator=(const VerbFolder&) = delete;

    std::string Name(const char* file) const { return path + '/' + file; }
    void WriteInput(const std::uint8_t* bytes, std::size_t count) const;

    // Runs the program with these words, and ends the process unless the program ends with one of
    // its codes, with new files if that means success, each of them readable, and without any if
    // not. Then the new files are removed.
    void Check(const Words& words) const;

private:
    std::vector<std::string> NewFiles() const;

    std::string path;
};

// Takes a choice from one byte after the other.
class Choices
{
public:
    Choices(const std::uint8_t* newBytes, std::size_t newCount) : bytes(newBytes), count(newCount)
    {}

    // Adds one of these; an empty one adds nothing.
    void Add(Words& words, std::initializer_list<Words> offers);

private:
    const std::uint8_t* bytes;
    std::size_t count;
};

} // namespace zvk::Pelkraft::Client
