#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// Shows the inks of a TIFF file as a person sees them in print.
std::unique_ptr<ISubcommand> MakePreviewCommand();

} // namespace zvk::Pelkraft::Client
