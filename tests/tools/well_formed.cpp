#include "tests/tools/well_formed.h"

#include <algorithm>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// After an ampersand: one of the five names that XML knows.
bool IsEntity(const std::string& xml, std::size_t at)
{
    for (const char* entity : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
        if (xml.compare(at, std::string(entity).size(), entity) == 0)
            return true;
    }
    return false;
}

// name="value" pairs, each after a blank.
bool HasCleanAttributes(std::string rest)
{
    while (!rest.empty()) {
        const std::size_t equals = rest.find("=\"");
        if (rest[0] != ' ' || equals == std::string::npos ||
            rest.find_first_of(" <>\"", 1) < equals)
            return false;
        const std::size_t end = rest.find('"', equals + 2);
        if (end == std::string::npos)
            return false;
        rest.erase(0, end + 1);
    }
    return true;
}

} // namespace

::testing::AssertionResult IsWellFormed(const std::string& xml)
{
    const std::string prologue = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (xml.compare(0, prologue.size(), prologue) != 0)
        return ::testing::AssertionFailure() << "no prologue";
    std::vector<std::string> open;
    bool closed = false;
    for (std::size_t at = prologue.size(); at < xml.size(); ++at) {
        const auto byte = static_cast<unsigned char>(xml[at]);
        if ((byte < 0x20 && byte != '\n') || byte > 0x7E || (closed && byte != '\n') ||
            (byte == '&' && !IsEntity(xml, at)))
            return ::testing::AssertionFailure() << "byte " << int{byte} << " at " << at;
        if (byte != '<')
            continue;
        const std::size_t end = xml.find('>', at);
        if (end == std::string::npos)
            return ::testing::AssertionFailure() << "open tag at " << at;
        std::string tag = xml.substr(at + 1, end - at - 1);
        at = end;
        if (tag[0] == '/') {
            if (open.empty() || open.back() != tag.substr(1))
                return ::testing::AssertionFailure() << "stray </" << tag.substr(1) << ">";
            open.pop_back();
            closed = open.empty();
            continue;
        }
        const bool alone = tag.back() == '/';
        if (alone)
            tag.pop_back();
        const std::size_t name = std::min(tag.find(' '), tag.size());
        if (!HasCleanAttributes(tag.substr(name)))
            return ::testing::AssertionFailure() << "attributes of <" << tag << ">";
        if (!alone)
            open.push_back(tag.substr(0, name));
    }
    if (!closed)
        return ::testing::AssertionFailure() << "not closed";
    return ::testing::AssertionSuccess();
}

} // namespace zvk::Pelkraft::TestSupport
