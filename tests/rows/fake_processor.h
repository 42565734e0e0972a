#pragma once

namespace zvk::Pelkraft::TestSupport {

// Takes the place of the companion's answer in this whole program.
class FakeProcessor
{
public:
    // The least level that takes the vector road.
    static constexpr int vectorLevel = 3;

    // Reports newLevel while it lives. Vector code runs only where the processor has it, so that
    // a test of it asks CanReport first.
    explicit FakeProcessor(int newLevel);
    ~FakeProcessor();
    FakeProcessor(const FakeProcessor&) = delete;
    FakeProcessor& operator=(const FakeProcessor&) = delete;

    static bool CanReport(int level);
    // Counts how often it was asked since it was made.
    int CountQuestions() const;
};

} // namespace zvk::Pelkraft::TestSupport
