#include "benchmarks/peers/entry.h"
#include "benchmarks/peers/pattern_job.h"
#include "pelkraft/image_row.h"

namespace zvk::Pelkraft::Benchmarks {
namespace {

// Works as a caller does who walks over a picture: two row objects stand on the stack for each row
// and take the caller's memory.
void Convert(const Job& job, int width, const unsigned char* source, unsigned char* destination)
{
    // The row only reads its source.
    const ImageRow from(width, job.source.channels, job.source.bits, job.source.planar,
                        const_cast<unsigned char*>(source));
    ImageRow to(CalcDestinationWidth(job, width), job.destination.channels, job.destination.bits,
                job.destination.planar, destination);
    if (job.operation == Operation::Remap)
        to.FillFromWithRemap(from, job.map, nullptr);
    else if (job.operation == Operation::Repeat)
        to.FillFromWithPixelRepeat(from, job.factor, nullptr);
    else
        to.FillFrom(from, nullptr);
}

} // namespace

void AddOurs(Entries& entries, const Job& job)
{
    if (job.operation == Operation::Pattern) {
        AddOurPattern(entries);
        return;
    }
    entries.push_back({"pelkraft", [&job](int width) -> RowCall {
                           return [&job, width](const unsigned char* source,
                                                unsigned char* destination) {
                               Convert(job, width, source, destination);
                           };
                       }});
}

} // namespace zvk::Pelkraft::Benchmarks
