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
    // No failure may change this state: fields, bytes, and what the object answers.
    virtual Bytes GetState() = 0;
    // True if the operation has now done all that it is for.
    virtual bool IsDone() = 0;
    // True if the last run has logged what it should have.
    virtual bool HasLogged([[maybe_unused]] bool failed) { return true; }
};

struct Operation
{
    std::string name;
    std::function<std::unique_ptr<Trial>()> prepare;
    // The operation may throw this text instead of std::bad_alloc.
    std::string otherText;
    // It throws otherText with all memory too.
    bool refuses = false;
    // It does without the memory, and throws nothing.
    bool doesWithout = false;
};

// Runs each operation with each of its allocations failing, once and from then on for ever: it
// throws what is documented, changes nothing, leaks nothing, and does its work when tried again.
// Prints on the standard output how many that were.
void SweepAll(const char* what, const std::vector<Operation>& operations);

} // namespace zvk::Pelkraft::TestSupport
