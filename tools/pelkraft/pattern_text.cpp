#include "tools/pelkraft/pattern_text.h"

#include <utility>

namespace zvk::Pelkraft::Client {

PatternText::PatternText(std::string newPath, const std::string& newBytes)
    : path(std::move(newPath)), bytes(newBytes.substr(0, newBytes.find('\0'))),
      endsAtZero(bytes.size() < newBytes.size()), lines(bytes)
{}

} // namespace zvk::Pelkraft::Client
