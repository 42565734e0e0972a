#include "pattern/upper_case.h"

#include <algorithm>

namespace zvk::Pelkraft {

std::string UpperCase(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(), [](char byte) {
        return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
    });
    return name;
}

} // namespace zvk::Pelkraft
