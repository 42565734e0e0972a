#include "chunks/chunk_descriptors.h"
#include "converters/convert_descriptor.h"
#include "pelkraft/image_row.h"

namespace zvk::Pelkraft::TestSupport {

template <typename... Operation>
void Mention(Operation...)
{}

// A pointer to a virtual operation is its slot, so that the compiler lays the class's table out.
void MentionOneOfEach()
{
    Mention(&ImageRow::SetData, &IChunkLoaderDescriptor::GetChunkStep,
            &IChunkSaverDescriptor::GetChunkStep, &IChunkConvertDescriptor::GetMetrics);
}

} // namespace zvk::Pelkraft::TestSupport
