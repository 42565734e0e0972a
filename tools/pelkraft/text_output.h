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

// The same, but to the standard error stream where a picture goes to the other.
void PrintBeside(const std::string& outputPath, const std::string& text);

// Refuses a terminal as the standard output stream of bytes; what they are is told.
void RefuseTerminal(const std::string& what);

// "1 byte", "2 bytes".
std::string ByteWords(std::uint64_t count);

// "30 rows in 0.012 s, 2500 rows per second".
std::string SpeedWords(std::uint64_t rows, std::chrono::steady_clock::duration time);

// The line that ends an explained run.
void PrintSpeed(const std::string& outputPath, std::uint64_t rows,
                std::chrono::steady_clock::duration time);

} // namespace zvk::Pelkraft::Client
