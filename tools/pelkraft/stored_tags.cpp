#include "tools/pelkraft/stored_tags.h"

#include "tools/pelkraft/raw_directory.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {

std::vector<std::uint64_t> StoredNumbers(const TiffFile& file, std::uint16_t tag, std::size_t most)
{
    const FileBytes bytes = {file.Descriptor(), file.Size(), 0};
    const std::optional<TiffForm> form = FormOf(bytes.Read(0, 4));
    const auto directory =
        form ? ReadDirectory(bytes, *form, TIFFCurrentDirOffset(file.Get())) : std::nullopt;
    if (!directory)
        return {};
    const auto found = std::find_if(directory->tags.begin(), directory->tags.end(),
                                    [tag](const RawTag& present) { return present.tag == tag; });
    if (found == directory->tags.end() || found->count == 0)
        return {};
    const std::uint64_t each = found->ValueBytes() / found->count;
    const std::uint64_t count = std::min<std::uint64_t>(found->count, most);
    const std::string values = bytes.Read(found->offset, count * each);
    std::vector<std::uint64_t> numbers;
    for (std::size_t at = 0; each != 0 && at + each <= values.size(); at += each)
        numbers.push_back(form->Number(std::string_view(values).substr(at, each)));
    return numbers;
}

} // namespace zvk::Pelkraft::Client
