#include "tools/pelkraft/pattern_report.h"
#include "web/module/surface.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace zvk::Pelkraft::Web {

// JavaScript releases the report.
PELKRAFT_FOR_JAVASCRIPT(explain_pattern)
const char* ExplainPattern(const char* text, std::size_t length, const char* file, char** report)
{
    return TextOfFailure([=] {
        const Client::PatternText read(file, std::string(text, length));
        const std::string json = Client::PatternJson(Client::PatternReport(read));
        *report = static_cast<char*>(std::malloc(json.size() + 1));
        if (*report == nullptr)
            throw std::bad_alloc();
        std::memcpy(*report, json.c_str(), json.size() + 1);
    });
}

} // namespace zvk::Pelkraft::Web
