#pragma once

#include "tests/support/conversion_run.h"

namespace zvk::Pelkraft::TestSupport {

// A source of whose bits only those are defined that the conversion has to look at: no pixel that
// has no counterpart, no channel that the map leaves out, nothing after a plane's last pixel.
Bytes BarelyDefinedSource(const ConversionCase& oneCase);

} // namespace zvk::Pelkraft::TestSupport
