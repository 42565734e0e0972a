#include "zvk/split.h"

#include <cstddef>

namespace zvk {
namespace {

// Bytes of the delimiter that stands at this position; 0 for none.
std::size_t DelimiterBytesAt(const std::string& text, std::size_t position,
                             const std::vector<std::string>& delimiters)
{
    for (const std::string& delimiter : delimiters) {
        if (!delimiter.empty() && text.compare(position, delimiter.size(), delimiter) == 0)
            return delimiter.size();
    }
    return 0;
}

} // namespace

std::vector<std::string> split(const std::string& text, const std::vector<std::string>& delimiters,
                               bool keepEmpty)
{
    std::vector<std::string> pieces;
    const auto store = [&](std::size_t start, std::size_t end) {
        if (keepEmpty || end > start)
            pieces.push_back(text.substr(start, end - start));
    };

    std::size_t start = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t delimiterBytes = DelimiterBytesAt(text, position, delimiters);
        if (delimiterBytes == 0) {
            ++position;
            continue;
        }
        store(start, position);
        position += delimiterBytes;
        start = position;
    }
    store(start, text.size());
    return pieces;
}

} // namespace zvk
