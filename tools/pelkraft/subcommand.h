#pragma once

#include "tools/pelkraft/exit_code.h"

namespace CLI {
class App;
}

namespace zvk::Pelkraft::Client {

// One verb of the program.
class ISubcommand
{
public:
    virtual ~ISubcommand() = default;
    // Adds the verb with its options and remembers it.
    virtual void Register(CLI::App& program) = 0;
    // True if the command line named this verb.
    virtual bool Chosen() const = 0;
    // Does the work. Failures are thrown.
    virtual ExitCode Run() = 0;
};

} // namespace zvk::Pelkraft::Client
