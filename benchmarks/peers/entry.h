#pragma once

#include "benchmarks/peers/jobs.h"

#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Benchmarks {

using RowCall = std::function<void(const unsigned char* source, unsigned char* destination)>;

// An entry may follow a rule of its own: the rule in words, and how far its values lie from the
// reference. Without words there is no difference.
struct OwnRule
{
    const char* words = "";
    // Counted in steps of one sample.
    unsigned largestDifference = 0;
    // The rule looks at the whole sample, where the reference takes its lowest bit. Both agree on
    // samples of 0 and 255, and are compared on these.
    bool comparedOnTwoLevels = false;
};

// One way to do a job. What doesn't depend on the row's address is prepared once for a width.
struct Entry
{
    std::string name;
    std::function<RowCall(int width)> prepare;
    OwnRule rule = {};
};

using Entries = std::vector<Entry>;
using AddEntries = void (*)(Entries& entries, const Job& job);

// A library beside ours, ready to work in one thread.
struct Peer
{
    std::string nameAndVersion;
    AddEntries add;
};

Peer StartOpenCv();
Peer StartLibyuv();
Peer StartSwscale();
// Throws a std::runtime_error where the interpreter finds no NumPy.
Peer StartNumpy();

void AddOurs(Entries& entries, const Job& job);
void AddPlainLoop(Entries& entries, const Job& job);

} // namespace zvk::Pelkraft::Benchmarks
