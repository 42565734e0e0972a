#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// The verb that takes a page apart into plates.
std::unique_ptr<ISubcommand> MakeSplitCommand();

} // namespace zvk::Pelkraft::Client
