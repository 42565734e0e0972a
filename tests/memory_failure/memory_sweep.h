#pragma once

#include "tests/support/naive_conversion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// One public operation and what it works on, made anew for each allocation that fails.
class Trial
{
public:
    Trial() = default;
    virtual ~Trial() = default;
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    virtual void Run() = 0;
    // What no failure may change: fields, bytes, and what the object answers.
    virtual Bytes GetState() = 0;
    // Whether the operation has now done all that it is for.
    virtual bool IsDone() = 0;
    // Whether the last run has logged what it should have.
    virtual bool HasLogged([[maybe_unused]] bool failed) { return true; }
};

struct Operation
{
    std::string name;
    std::function<std::unique_ptr<Trial>()> prepare;
    // What else than std::bad_alloc it may throw where memory is missing.
    std::string otherText;
    // It throws otherText with all memory too.
    bool refuses = false;
    // It does without the memory, and throws nothing.
    bool doesWithout = false;
};

// Runs each operation with each of its allocations failing, once and from then on for ever: it
// throws what is documented, changes nothing, leaks nothing, and does its work when tried again.
// Tells on the standard output how many that were.
void SweepAll(const char* what, const std::vector<Operation>& operations);

} // namespace zvk::Pelkraft::TestSupport
