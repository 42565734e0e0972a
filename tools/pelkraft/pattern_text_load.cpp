#include "tools/pelkraft/pattern_text.h"

#include "tools/pelkraft/small_file.h"

namespace zvk::Pelkraft::Client {

PatternText PatternText::Load(const std::string& path)
{
    return PatternText(path, ReadSmallFile(path, "a pattern text"));
}

} // namespace zvk::Pelkraft::Client
