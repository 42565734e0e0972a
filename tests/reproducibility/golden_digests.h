#pragma once

#include "tests/support/naive_conversion.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The digests of one pattern text.
struct PatternDigests
{
    // One for each of pictureSizes, by the engines for production, which agree.
    std::string pictures[3];
    // The first picture once more, after a reset, by X86. Sse gives the same as at first.
    std::string afterReset;
    // The three pictures as one, by the reference class.
    std::string reference;
};

// The checked-in digests. A missing one is an empty text.
class GoldenDigests
{
public:
    // Throws std::runtime_error if the file can't be read.
    explicit GoldenDigests(const std::string& path);

    std::string Conversion(int number) const;
    PatternDigests Pattern(int number, int seedNumber) const;

private:
    std::vector<std::string> Words(const std::string& name, std::size_t count) const;

    std::map<std::string, std::string> digestsByName;
};

// Every row through the function, in their order.
std::string DigestOfRows(const std::vector<Bytes>& picture,
                         const std::function<Bytes(const Bytes& row)>& apply);

// By the naive references alone.
Bytes NaiveConversionRow(int number);
std::string NaiveConversionDigest(int number);
PatternDigests NaivePatternDigests(int number, int seedNumber);

} // namespace zvk::Pelkraft::TestSupport
