#pragma once

#include "tools/pelkraft/output_rules.h"
#include "tools/pelkraft/system_calls.h"

#include <cstddef>
#include <string>

namespace zvk::Pelkraft::Client {

// A file that appears whole or not at all: written under a temporary name beside its target, and
// renamed by Commit. Without Commit the destructor removes it. A target that exists must be a
// regular file; what a symbolic link points to is replaced, the link stays. What the rules refuse
// is refused by the constructor, and a target that came to be since then by Commit.
class AtomicOutput
{
public:
    explicit AtomicOutput(const std::string& newPath, const OutputRules& newRules = {});
    ~AtomicOutput();
    AtomicOutput(const AtomicOutput&) = delete;
    AtomicOutput& operator=(const AtomicOutput&) = delete;

    // Throws what would keep the constructor from its work, without creating anything.
    static void Check(const std::string& path, const OutputRules& rules = {});

    // The open temporary. Whoever takes it stores and closes it.
    int TakeDescriptor();
    // Or these do: Append takes bytes and answers 0 or the number of an error, Store ends it, and
    // Write is all of it.
    int Append(const void* bytes, std::size_t size) const;
    void Store();
    void Write(const std::string& bytes);
    const std::string& TemporaryPath() const { return temporaryPath; }
    void Commit();

    // Removes all temporaries, where the program ends without its destructors.
    static void RemoveAll() noexcept;

private:
    // A path with its links followed.
    struct Target
    {
        std::string path;
        PresentFile present;
    };
    static Target Find(const std::string& path, const OutputRules& rules);

    // Those that live, the last one made first.
    static AtomicOutput* latest;
    AtomicOutput* earlier;

    OutputRules rules;
    std::string shownPath;
    std::string targetPath;
    std::string temporaryPath;
    int descriptor = -1;
};

} // namespace zvk::Pelkraft::Client
