// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CDirectHead.h"

#include <algorithm>

namespace qrb {

CDirectHead::CDirectHead(std::span<const double> taps, const CConvolverKernels& kernels)
    : m_kernels(&kernels), m_taps(taps.size()), m_line(taps.size() - 1 + kPiece)
{
    std::ranges::copy(taps, m_taps.data());
}

void CDirectHead::process(const double* in, double* out, std::size_t count, bool isAdded)
{
    const std::size_t reach = m_taps.size() - 1;
    if (m_isFirstBlock && count != 0) {
        m_line.fill(in[0]);
        m_isFirstBlock = false;
    }
    while (count != 0) {
        const std::size_t length = std::min(count, kPiece);
        double* newest = m_line.data() + reach;
        std::copy_n(in, length, newest);
        m_kernels->convolve(m_taps.span(), {newest}, out, length, isAdded);
        std::copy_n(m_line.data() + length, reach, m_line.data());
        in += length;
        out += length;
        count -= length;
    }
}

} // namespace qrb
