#pragma once

#include <cstddef>

namespace zvk::Pelkraft::Client {

// The terminal of the standard error stream, which each system has in its own way.

// True if there is one that can write a line anew.
bool ErrorsAreSeen();
// Letters in a line of it.
std::size_t ErrorColumns();
// True if it shows colours, and nobody has asked for none.
bool ErrorsTakeColours();
// Empties the line in which the cursor stands.
void WipeLine();

} // namespace zvk::Pelkraft::Client
