#pragma once

#include "dither/dither_rows.h"
#include "pelkraft/dither.h"

namespace zvk::Pelkraft {

// Refuses, in this order: the record's size and what this library does not know; a number of bits,
// channels or a road that none may have; the channels one after the other, each with its steps, its
// samples of no ink and of full ink, and its inks; a mask where there is none.
DitherRequest CheckDitherSpec(const plk_dither_spec* given);

} // namespace zvk::Pelkraft
