#include "tools/pelkraft/wide_text_windows.h"

#include <windows.h>

namespace zvk::Pelkraft::Client {

std::wstring Wide(std::string_view text)
{
    const int size = static_cast<int>(text.size());
    const int wideSize = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), wideSize);
    return wide;
}

std::string Utf8(std::wstring_view text)
{
    const int size = static_cast<int>(text.size());
    const int narrowSize =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(narrowSize), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), narrowSize, nullptr, nullptr);
    return narrow;
}

} // namespace zvk::Pelkraft::Client
