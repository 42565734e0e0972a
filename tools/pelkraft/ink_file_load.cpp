#include "tools/pelkraft/ink_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/small_file.h"

namespace zvk::Pelkraft::Client {

InkTable LoadInkFile(const std::string& path)
{
    InkTable inks;
    if (const std::string fault = AddInks(ReadSmallFile(path, {"an ink file"}), inks);
        !fault.empty())
        throw Failure(ExitCode::BadInput, path, fault);
    return inks;
}

} // namespace zvk::Pelkraft::Client
