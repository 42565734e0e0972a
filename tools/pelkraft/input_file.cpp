#include "tools/pelkraft/input_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/system_calls.h"

#include <utility>

namespace zvk::Pelkraft::Client {

InputFile::InputFile(const std::string& path)
{
    OpenedFile file;
    const int error = OpenToRead(path, file);
    if (error == 0 && file.regular) {
        descriptor = file.descriptor;
        size = file.size;
        return;
    }
    if (file.descriptor >= 0)
        Close(file.descriptor);
    ThrowReadFailure(path, error != 0 ? ErrorText(error) : "it is not a regular file");
}

InputFile::~InputFile()
{
    if (descriptor >= 0)
        Close(descriptor);
}

int InputFile::TakeDescriptor()
{
    return std::exchange(descriptor, -1);
}

void ThrowReadFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be read: " + text);
}

} // namespace zvk::Pelkraft::Client
