#include "tools/pelkraft/pattern_text.h"

#include "tools/pelkraft/small_file.h"

namespace zvk::Pelkraft::Client {

PatternText PatternText::Load(const std::string& path, const std::string& advice)
{
    return PatternText(path, ReadSmallFile(path, {"a pattern text", ExitCode::BadPattern, advice}));
}

} // namespace zvk::Pelkraft::Client
