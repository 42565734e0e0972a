#pragma once

namespace zvk::Pelkraft::TestSupport {

// Two in-colours and three out-inks. Combination 0, a quarter of all: Cyan 255 from step 3 on,
// LightCyan 64 and 128; combination 1: Cyan 40 and 255 from step 2 on, LightCyan 64.
inline constexpr const char* smallPattern = R"(DotWeavePattern
VERSION 2
RANDOM_SEED 1234
#comment up to the end of the line
BEGIN_OUT_INKS
Cyan LightCyan Black
END_OUT_INKS
BEGIN_IN_COLORS
Cyan Black
END_IN_COLORS
BEGIN_IN_COLOR
Cyan
BEGIN_INKS
Cyan LightCyan
END_INKS
BEGIN_VALUES
1 1 1-64
2 1:3 1-128 0-40
3 1 0-255
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR
Black
BEGIN_INKS
Black
END_INKS
BEGIN_VALUES
1 1 0-255
END_VALUES
END_IN_COLOR
)";

// One combination, so that every byte is known; the inks stand in another order than the colours.
inline constexpr const char* fixedPattern = R"(DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Black Cyan Spot END_OUT_INKS
BEGIN_IN_COLORS Cyan Black END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan Spot END_INKS
BEGIN_VALUES
1 1 0-10
2 1 0-20
3 1 1-30
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR Black
BEGIN_INKS Black END_INKS
BEGIN_VALUES 1 1 0-200 END_VALUES
END_IN_COLOR
)";

} // namespace zvk::Pelkraft::TestSupport
