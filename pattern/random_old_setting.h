#pragma once

namespace zvk::Pelkraft {

// Whether the reference class is to draw in its older way: set by the value "PatternRandomOld"
// of the machine's registry, whatever its data. byDefault where there is no such value, and where
// there is no registry.
bool ReadRandomOldSetting(bool byDefault);

} // namespace zvk::Pelkraft
