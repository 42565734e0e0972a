#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// The head of a colour profile, as the profile's own bytes tell it.
struct ProfileHeader
{
    // False where the bytes are no profile.
    bool sound = false;
    std::uint32_t declaredBytes = 0;
    std::uint64_t presentBytes = 0;
    // Four letters each, such as "CMYK" and "prtr", blanks at the end left out.
    std::string colourSpace;
    std::string profileClass;
    // "4.3"
    std::string version;
    std::string description;
    // Channels of the colour space; 0 where it is unknown.
    int channels = 0;
};

ProfileHeader ReadProfileHeader(std::string_view bytes);

} // namespace zvk::Pelkraft::Client
