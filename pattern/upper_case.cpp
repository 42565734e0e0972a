#include "pattern/upper_case.h"

namespace zvk::Pelkraft {

std::string UpperCase(std::string name)
{
    for (char& byte : name)
        if (byte >= 'a' && byte <= 'z')
            byte = static_cast<char>(byte - 'a' + 'A');
    return name;
}

} // namespace zvk::Pelkraft
