#pragma once

#include <memory>

namespace CLI {
class FormatterBase;
}

namespace zvk::Pelkraft::Client {

// The form of all help texts: no line is longer than 100 columns, and the values of an option stand
// beside its name.
std::shared_ptr<CLI::FormatterBase> MakeHelpFormat();

} // namespace zvk::Pelkraft::Client
