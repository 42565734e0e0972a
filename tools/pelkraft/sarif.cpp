#include "tools/pelkraft/sarif.h"

#include "tools/pelkraft/json.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* schema = "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
                               "sarif-schema-2.1.0.json";
// A new way of computing it takes a new number.
constexpr const char* fingerprintKey = "findingHash/v1";

bool IsUnreserved(char letter)
{
    constexpr std::string_view others = "-._~/";
    const auto code = static_cast<unsigned char>(letter);
    return (code < 0x80 && std::isalnum(code) != 0) ||
           others.find(letter) != std::string_view::npos;
}

std::string UriOf(std::string path)
{
    std::string uri;
    const bool drive = path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    if (drive) {
        uri = "file:///" + path.substr(0, 2);
        path.erase(0, 2);
    } else if (!path.empty() && path.front() == '/') {
        uri = "file://";
    }
    for (char letter : path) {
        // Elsewhere it is a letter like any other.
        if (drive && letter == '\\')
            letter = '/';
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(letter)));
        uri += IsUnreserved(letter) ? std::string(1, letter) : code;
    }
    return uri;
}

Json Text(const std::string& words)
{
    return {{"text", words}};
}

Json RuleJson(const SarifRule& rule)
{
    return {{"id", rule.id},
            {"shortDescription", Text(rule.summary)},
            {"help", Text(rule.help)},
            {"defaultConfiguration", {{"level", rule.level}}}};
}

Json RegionJson(const SarifRegion& region)
{
    return {{"startLine", region.line},        {"startColumn", region.column},
            {"endLine", region.endLine},       {"endColumn", region.endColumn},
            {"byteOffset", region.byteOffset}, {"byteLength", region.byteLength},
            {"snippet", Text(region.snippet)}};
}

Json LocationJson(const SarifResult& result)
{
    Json location;
    location["physicalLocation"]["artifactLocation"] = {{"uri", UriOf(result.path)}};
    if (result.region)
        location["physicalLocation"]["region"] = RegionJson(*result.region);
    if (!result.part.empty())
        location["logicalLocations"] = Json::array({{{"name", result.part}}});
    return location;
}

Json FixJson(const SarifResult& result)
{
    const Json deleted = {{"byteOffset", result.region->byteOffset},
                          {"byteLength", result.region->byteLength}};
    Json change;
    change["artifactLocation"] = {{"uri", UriOf(result.path)}};
    change["replacements"] =
        Json::array({{{"deletedRegion", deleted}, {"insertedContent", Text(*result.replacement)}}});
    Json fix;
    fix["description"] = Text(result.replacementWords);
    fix["artifactChanges"] = Json::array({change});
    return fix;
}

Json ResultJson(const SarifResult& result, const std::string& ruleId)
{
    Json json = {{"ruleId", ruleId},
                 {"ruleIndex", result.rule},
                 {"level", result.level},
                 {"message", Text(result.message)},
                 {"locations", Json::array({LocationJson(result)})},
                 {"partialFingerprints", {{fingerprintKey, result.fingerprint}}}};
    if (result.replacement && result.region)
        json["fixes"] = Json::array({FixJson(result)});
    return json;
}

} // namespace

std::string SarifFingerprint(const std::string& rule, const std::string& content, std::size_t count)
{
    const std::string place = rule + '\n' + content + '\n' + std::to_string(count);
    std::uint64_t hash = 14695981039346656037U;
    for (const char letter : place)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 1099511628211U;
    char words[17];
    std::snprintf(words, sizeof words, "%016llx", static_cast<unsigned long long>(hash));
    return words;
}

std::string SarifLog(const std::vector<SarifRule>& rules, const std::vector<SarifResult>& results,
                     int exitCode)
{
    Json driver = {{"name", "pelkraft"}, {"version", PELKRAFT_VERSION}, {"rules", Json::array()}};
    for (const SarifRule& rule : rules)
        driver["rules"].push_back(RuleJson(rule));
    Json run;
    run["tool"]["driver"] = driver;
    run["invocations"] = Json::array({{{"executionSuccessful", true}, {"exitCode", exitCode}}});
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = Json::array();
    for (const SarifResult& result : results)
        run["results"].push_back(ResultJson(result, rules[result.rule].id));
    return JsonText({{"$schema", schema}, {"version", "2.1.0"}, {"runs", Json::array({run})}});
}

} // namespace zvk::Pelkraft::Client
