#pragma once

#include "tools/pelkraft/output_rules.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// Writes a file of these bytes, whole or not at all.
void WriteWholeFile(const std::string& path, const std::string& bytes,
                    const OutputRules& rules = {});

// To the standard output stream; a stream that takes no more is a failure to write.
void PrintText(const std::string& text);

// The line that ends an explained run.
void PrintSpeed(std::uint64_t rows, std::chrono::steady_clock::duration time);

} // namespace zvk::Pelkraft::Client
