#pragma once

#include <string>

namespace zvk::Pelkraft::Client {

// From here on an interrupt only leaves a note, so that the command can clean up: Ctrl-C and the
// system's other ways to ask a program to end. A closed pipe and a file size limit become errors
// of the write that met them.
void CatchInterrupts();

// Leaves the note. Safe in a signal handler and on any thread.
void NoteInterrupt() noexcept;

// Throws the failure of an interrupted command if there is a note.
void StopIfInterrupted(const std::string& outputPath);

} // namespace zvk::Pelkraft::Client
