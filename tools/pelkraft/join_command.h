#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// The verb that makes a page of its plates.
std::unique_ptr<ISubcommand> MakeJoinCommand();

} // namespace zvk::Pelkraft::Client
