#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// pelkraft mask --verify|--export raw16 [FILE]
std::unique_ptr<ISubcommand> MakeMaskCommand();

} // namespace zvk::Pelkraft::Client
