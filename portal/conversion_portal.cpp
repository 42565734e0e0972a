#include "portal/conversion_portal.h"

#include "portal/copy_composite.h"
#include "portal/hetero_convert_composite.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedCount =
    "zvk::Pelkraft::ConversionPortal unsupported conversion count";

ActiveSteps FilterChain(std::size_t chainLength, const ChunkConvertFacility* chain)
{
    ActiveSteps active;
    for (const ChunkConvertFacility* facility = chain; facility != chain + chainLength;
         ++facility) {
        if (facility->select == nullptr)
            continue;
        if (active.count == maxActiveSteps)
            throw unsupportedCount;
        active.facilities[active.count++] = facility;
    }
    return active;
}

} // namespace

void ConversionPortal(const ConversionJob& job, std::size_t chainLength,
                      const ChunkConvertFacility* chain)
{
    const ActiveSteps active = FilterChain(chainLength, chain);
    if (active.count == 0) {
        CopyComposite(job).Run();
        return;
    }
    const ChainMetrics metrics(active, job.source);
    HeteroConvertComposite(job, metrics).Run();
}

} // namespace zvk::Pelkraft
