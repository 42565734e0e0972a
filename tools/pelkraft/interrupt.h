#pragma once

#include <string>

namespace zvk::Pelkraft::Client {

// From here on SIGINT, SIGTERM and SIGHUP only leave a note, so that the command can clean up;
// a closed pipe and a file size limit become errors of the write that met them.
void CatchInterrupts();

// Throws the failure of an interrupted command if one of the signals came.
void StopIfInterrupted(const std::string& outputPath);

} // namespace zvk::Pelkraft::Client
