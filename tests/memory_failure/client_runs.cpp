#include "tests/memory_failure/client_runs.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <ostream>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int memoryCode = 7;
// Longer than the slowest run, by far.
constexpr unsigned secondsToHang = 200;
constexpr const char* outputNames[] = {"OUT.tif", "SVG", "PNG"};
constexpr const char* oldContent = "old";

// All but the line with the time.
std::string WithoutTime(const std::string& text)
{
    const std::size_t time = text.find(" rows in ");
    if (time == std::string::npos)
        return text;
    return text.substr(0, text.find_last_of('\n', time) + 1);
}

// Returns the samples of both pages.
std::vector<std::uint16_t> SamplesOf(const std::string& path)
{
    FileForm form;
    std::vector<std::uint16_t> samples = ReadTiff(path, form, 0).samples;
    const std::vector<std::uint16_t> second = ReadTiff(path, form, 1).samples;
    samples.insert(samples.end(), second.begin(), second.end());
    return samples;
}

std::vector<std::string> VariablesFor(const FailingAllocation& failing, const std::string& record)
{
    std::vector<std::string> variables = {std::string("LD_PRELOAD=") + PELKRAFT_FAILING_MEMORY,
                                          std::string(allocationRecordVariable) + "=" + record,
                                          std::string(failingAllocationVariable) + "=" +
                                              std::to_string(failing.number)};
    if (failing.forEver)
        variables.push_back(std::string(failsForEverVariable) + "=1");
    if (failing.fromStart)
        variables.push_back(std::string(countsFromStartVariable) + "=1");
    return variables;
}

// In the new process, ahead of the program.
void Prepare()
{
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    alarm(secondsToHang);
}

// They come after env, so that the checker itself goes without the variables.
std::vector<std::string> Watched(const std::vector<std::string>& variables,
                                 const std::vector<std::string>& command)
{
    std::vector<std::string> watched = {"valgrind",
                                        "-q",
                                        "--trace-children=yes",
                                        "--leak-check=full",
                                        "--show-leak-kinds=definite",
                                        "--errors-for-leak-kinds=none",
                                        "--show-mismatched-frees=no",
                                        "--soname-synonyms=somalloc=nouserintercepts",
                                        "--error-exitcode=99",
                                        "env"};
    watched.insert(watched.end(), variables.begin(), variables.end());
    watched.insert(watched.end(), command.begin(), command.end());
    return watched;
}

} // namespace

void PrintTo(const ClientCase& clientCase, std::ostream* out)
{
    *out << clientCase.name;
}

ClientRuns::ClientRuns(const ClientCase& newCase)
    : clientCase(newCase), record(folder.Streams() + "/record")
{
    command.push_back(PELKRAFT_TOOL);
    for (const std::string& argument : clientCase.arguments) {
        const bool isFile = argument == "IN.tif" || argument == "PATTERN" ||
                            std::count(std::begin(outputNames), std::end(outputNames), argument);
        command.push_back(isFile ? folder.Path(argument) : argument);
    }
    if (clientCase.writePicture)
        clientCase.writePicture(folder.Path("IN.tif"));
    if (clientCase.pattern != nullptr)
        ToolFolder::WriteBytes(folder.Path("PATTERN"), clientCase.pattern);
}

Outcome ClientRuns::Execute(const FailingAllocation& failing) const
{
    std::vector<std::string> variables = VariablesFor(failing, record);
    const std::string streams = folder.Streams();
    if (failing.watched)
        return Subprocess(Watched(variables, command), streams, Prepare).Wait();
    return Subprocess(command, streams,
                      [&] {
                          for (std::string& variable : variables)
                              putenv(variable.data());
                          Prepare();
                      })
        .Wait();
}

ClientRuns::Left ClientRuns::Run(const FailingAllocation& failing)
{
    ToolFolder::WriteBytes(record, std::string(sizeof(AllocationRecord), '\0'));
    // An earlier run may have left a temporary file.
    for (const std::string& name : folder.Files()) {
        if (name.front() == '.')
            std::filesystem::remove(folder.Path(name));
    }
    for (const char* const output : outputNames)
        ToolFolder::WriteBytes(folder.Path(output), oldContent);

    Left left;
    left.outcome = Execute(failing);
    left.outcome.output = WithoutTime(left.outcome.output);
    for (const char* const output : outputNames)
        left.outputs.push_back(ToolFolder::Bytes(folder.Path(output)));
    left.files = folder.Files();
    std::uint64_t counts[3] = {};
    std::ifstream(record, std::ios::binary).read(reinterpret_cast<char*>(counts), sizeof counts);
    left.asked = counts[0];
    left.failed = counts[1];
    left.lostMemory =
        counts[2] != 0 && left.outcome.errors.find("definitely lost") != std::string::npos;
    return left;
}

::testing::AssertionResult ClientRuns::Undisturbed(bool watched)
{
    if (!watched)
        fromStart = Run({.number = 0, .fromStart = true}).asked;
    undisturbed = Run({.number = 0, .watched = watched});
    fromMain = undisturbed.asked;
    if (clientCase.mayCompressElse)
        samples = SamplesOf(folder.Path(outputNames[0]));
    if (undisturbed.outcome.exitCode == clientCase.exitCode && fromMain > 0 &&
        undisturbed.failed == 0 && !undisturbed.lostMemory)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "exit code " << undisturbed.outcome.exitCode << ": " << undisturbed.outcome.errors;
}

bool ClientRuns::IsWhole(const Left& left) const
{
    return left.outcome.exitCode == clientCase.exitCode &&
           left.outcome.output == undisturbed.outcome.output &&
           left.outcome.errors == undisturbed.outcome.errors && HoldsNewOutputs(left);
}

bool ClientRuns::HoldsNewOutputs(const Left& left) const
{
    if (left.outputs == undisturbed.outputs)
        return true;
    return clientCase.mayCompressElse && left.outputs[0] != oldContent &&
           SamplesOf(folder.Path(outputNames[0])) == samples;
}

bool ClientRuns::EndedForMemory(const Left& left) const
{
    const std::string& errors = left.outcome.errors;
    const bool isOneLine = !errors.empty() && errors.back() == '\n';
    const std::size_t start = errors.rfind("pelkraft: ");
    return left.outcome.exitCode == memoryCode && isOneLine && start != std::string::npos &&
           errors.find("memory", start) != std::string::npos;
}

::testing::AssertionResult ClientRuns::EndsWell(const FailingAllocation& failing)
{
    const Left left = Run(failing);
    bool good =
        left.files == undisturbed.files && left.outcome.signalNumber == 0 && !left.lostMemory;
    const bool allOld = std::count(left.outputs.begin(), left.outputs.end(), oldContent) ==
                        static_cast<std::ptrdiff_t>(left.outputs.size());
    const bool allNew = HoldsNewOutputs(left);
    good = good && (allOld || allNew);
    const bool whole = IsWhole(left);
    good = good && (whole || (left.failed != 0 && EndedForMemory(left)));
    failed += left.failed != 0 ? 1 : 0;
    survived += left.failed != 0 && whole ? 1 : 0;
    if (good)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "allocation " << failing.number << (failing.forEver ? " and all later ones" : "")
           << (failing.fromStart ? " from the start" : "") << ": exit code "
           << left.outcome.exitCode << ", signal " << left.outcome.signalNumber
           << (allOld   ? ", all outputs old"
               : allNew ? ", all outputs new"
                        : ", outputs differ")
           << (left.files == undisturbed.files ? "" : ", other files")
           << ", errors: " << left.outcome.errors;
}

} // namespace zvk::Pelkraft::TestSupport
