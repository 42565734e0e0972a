#include "direct/kernels.h"

#include <gtest/gtest.h>

// Wider kernels would give the same bytes here, and end the program on a processor without them.
namespace zvk::Pelkraft::TestSupport {
namespace {

void ExpectKernels(Road road, const SplitMergeKernels& splitMerge, const SampleKernels& samples,
                   const PixelKernels& pixels, const FinishKernels& finish)
{
    const Kernels& kernels = KernelsOf(road);
    EXPECT_EQ(&splitMerge, kernels.splitMerge);
    EXPECT_EQ(&samples, kernels.samples);
    EXPECT_EQ(&pixels, kernels.pixels);
    EXPECT_EQ(&finish, kernels.finish);
}

TEST(KernelsOfARoad, AreItsOwn)
{
    ExpectKernels(Road::Portable, PortableRoad::GetSplitMergeKernels(),
                  PortableRoad::GetSampleKernels(), PortableRoad::GetPixelKernels(),
                  PortableRoad::GetFinishKernels());
#ifdef PELKRAFT_VECTOR_ROAD
    ExpectKernels(Road::Vector, VectorRoad::GetSplitMergeKernels(), VectorRoad::GetSampleKernels(),
                  VectorRoad::GetPixelKernels(), VectorRoad::GetFinishKernels());
#endif
#ifdef PELKRAFT_WIDE_ROADS
    ExpectKernels(Road::Avx2, Avx2Road::GetSplitMergeKernels(), Avx2Road::GetSampleKernels(),
                  Avx2Road::GetPixelKernels(), Avx2Road::GetFinishKernels());
    ExpectKernels(Road::Avx512, Avx512Road::GetSplitMergeKernels(), Avx512Road::GetSampleKernels(),
                  Avx512Road::GetPixelKernels(), Avx512Road::GetFinishKernels());
#endif
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
