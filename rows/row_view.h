#pragma once

#include "common/conversion.h"
#include "pelkraft/image_row.h"

namespace zvk::Pelkraft {

// Asks the row for everything that a conversion needs of it, once.
RowView ViewOf(const ImageRow& row);

} // namespace zvk::Pelkraft
