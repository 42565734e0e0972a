#pragma once

#include "tools/pelkraft/exit_code.h"

#include <string>

namespace zvk::Pelkraft::Client {

// A kind of file that people write.
struct SmallFile
{
    // Such as "a pattern text".
    std::string kind;
    // The code for a picture in its place, and what its user may want to hear.
    ExitCode refusal = ExitCode::BadInput;
    std::string advice = {};
};

// All bytes of a file of up to 1 MiB.
std::string ReadSmallFile(const std::string& path, const SmallFile& wanted);

} // namespace zvk::Pelkraft::Client
