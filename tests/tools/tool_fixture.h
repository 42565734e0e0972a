#pragma once

#include "tests/tools/subprocess.h"
#include "tests/tools/tiff_image.h"
#include "tests/tools/tool_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A test of the whole program in a folder of its own.
class ToolFixture : public ::testing::Test, protected ToolFolder
{
protected:
    [[nodiscard]] Outcome Run(const std::vector<std::string>& arguments,
                              unsigned long memoryBytes = 0) const
    {
        return RunTool(Streams(), arguments, memoryBytes);
    }

    // convert of in.tif to out.tif.
    [[nodiscard]] Outcome Convert(const std::vector<std::string>& options = {},
                                  unsigned long memoryBytes = 0) const
    {
        std::vector<std::string> arguments = {"convert", Path("in.tif"), Path("out.tif")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments, memoryBytes);
    }

    [[nodiscard]] TiffImage Output() const
    {
        FileForm form;
        return ReadTiff(Path("out.tif"), form);
    }
};

// The program ended well and had nothing to say.
inline ::testing::AssertionResult EndedSilently(const Outcome& outcome)
{
    if (outcome.exitCode == 0 && outcome.errors.empty())
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "exit code " << outcome.exitCode << ", signal "
                                         << outcome.signalNumber << ", errors: " << outcome.errors;
}

// The program refused with this code and one line that holds all of these words.
inline ::testing::AssertionResult Refused(const Outcome& outcome, int code,
                                          const std::vector<std::string>& words)
{
    const auto failure = [&] {
        return ::testing::AssertionFailure()
               << "exit code " << outcome.exitCode << ", signal " << outcome.signalNumber
               << ", errors: " << outcome.errors;
    };
    const std::string& text = outcome.errors;
    if (outcome.exitCode != code || text.rfind("pelkraft: ", 0) != 0 ||
        std::count(text.begin(), text.end(), '\n') != 1 || text.back() != '\n')
        return failure();
    for (const std::string& word : words) {
        if (text.find(word) == std::string::npos)
            return failure() << "without: " << word;
    }
    return ::testing::AssertionSuccess();
}

// The program showed findings of a pattern with these words, and then refused with this code and a
// line of its own that holds the others.
inline ::testing::AssertionResult StoppedAtFindings(const Outcome& outcome, int code,
                                                    const std::vector<std::string>& findings,
                                                    const std::vector<std::string>& words)
{
    const std::size_t last = outcome.errors.rfind("\npelkraft: ") + 1;
    const std::string shown = outcome.errors.substr(0, last);
    for (const std::string& finding : findings) {
        if (shown.find(finding) == std::string::npos)
            return ::testing::AssertionFailure() << "without: " << finding << "\n"
                                                 << outcome.errors;
    }
    Outcome refusal = outcome;
    refusal.errors.erase(0, last);
    return Refused(refusal, code, words);
}

} // namespace zvk::Pelkraft::TestSupport
