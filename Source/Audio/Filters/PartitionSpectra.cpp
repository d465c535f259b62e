// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/PartitionSpectra.h"

#include "Platform/CBlockTransformPlan.h"

#include <algorithm>

namespace qrb {

CAlignedSamples makePartitionSpectra(const platform::CBlockTransformPlan& plan, std::span<const double> taps,
                                     std::size_t count, const CConvolverKernels& kernels)
{
    const std::size_t block = plan.block();
    CAlignedSamples list(2 * block * count);
    CAlignedSamples piece(2 * block);
    CAlignedSamples work(2 * block);
    const double scale = 1.0 / static_cast<double>(block);
    for (std::size_t j = 0; j < count; ++j) {
        const std::size_t from = std::min(j * block, taps.size());
        const std::span<const double> part = taps.subspan(from, std::min(block, taps.size() - from));
        piece.fill(0.0);
        std::ranges::transform(part, piece.data(), [scale](double tap) { return tap * scale; });
        kernels.transform(plan, piece.data(), piece.data() + block, work.data(), list.data() + j * kSpectrumTile,
                          count * kSpectrumTile);
    }
    return list;
}

void fillSpectra(const platform::CBlockTransformPlan& plan, const double* frame, std::size_t count,
                 const CConvolverKernels& kernels, double* work, CAlignedSamples& list)
{
    const std::size_t block = plan.block();
    const std::size_t stride = count * kSpectrumTile;
    kernels.transform(plan, frame, frame + block, work, list.data(), stride);
    for (std::size_t tile = 0; tile < block / kSpectrumTileBins; ++tile) {
        const double* first = list.data() + tile * stride;
        for (std::size_t j = 1; j < count; ++j)
            std::copy_n(first, kSpectrumTile, list.data() + tile * stride + j * kSpectrumTile);
    }
}

} // namespace qrb
