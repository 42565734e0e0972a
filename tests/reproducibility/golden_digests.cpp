#include "tests/reproducibility/golden_digests.h"

#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zvk::Pelkraft::TestSupport {

GoldenDigests::GoldenDigests(const std::string& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("no golden digests at " + path);
    for (std::string line; std::getline(file, line);)
        if (const auto end = line.find(": "); line.front() != '#' && end != std::string::npos)
            digestsByName[line.substr(0, end)] = line.substr(end + 2);
}

std::vector<std::string> GoldenDigests::Words(const std::string& name, std::size_t count) const
{
    std::vector<std::string> words;
    if (const auto found = digestsByName.find(name); found != digestsByName.end()) {
        std::istringstream digests(found->second);
        for (std::string word; digests >> word;)
            words.push_back(word);
    }
    words.resize(count);
    return words;
}

std::string GoldenDigests::Conversion(int number) const
{
    return Words(ConversionName(number), 1)[0];
}

PatternDigests GoldenDigests::Pattern(int number, int seedNumber) const
{
    const auto words = Words(PatternName(number, seedNumber), 5);
    return {{words[0], words[1], words[2]}, words[3], words[4]};
}

std::string DigestOfRows(const std::vector<Bytes>& picture,
                         const std::function<Bytes(const Bytes& row)>& apply)
{
    Digest digest;
    for (const Bytes& row : picture)
        digest.Add(apply(row));
    return digest.Hex();
}

} // namespace zvk::Pelkraft::TestSupport
