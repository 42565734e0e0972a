#pragma once

#include <string>

namespace zvk::Pelkraft::TestSupport {

// Answers with the text that the call throws, or with a remark that it throws none.
template <typename Call>
std::string TextOf(Call call)
{
    try {
        call();
    } catch (const char* text) {
        return text;
    }
    return "no text was thrown";
}

} // namespace zvk::Pelkraft::TestSupport
