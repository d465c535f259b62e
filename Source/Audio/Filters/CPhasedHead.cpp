// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CPhasedHead.h"

#include <algorithm>

namespace qrb {

CPhasedHead::CPhasedHead(std::span<const double> taps, const CConvolverKernels& kernels)
    : m_kernels(&kernels), m_taps(taps.size()), m_evenTaps((taps.size() + 1) / 2), m_oddTaps(taps.size() / 2),
      m_reach(taps.size() / 2 + 1), m_even(m_reach + kPiece), m_odd(m_reach + kPiece)
{
    std::ranges::copy(taps, m_taps.data());
    for (std::size_t k = 0; k < taps.size(); ++k)
        (k % 2 == 0 ? m_evenTaps : m_oddTaps).data()[k / 2] = taps[k];
}

void CPhasedHead::prime(double evenLevel, double oddLevel)
{
    m_even.fill(evenLevel);
    m_odd.fill(oddLevel);
    m_oddPairs = oddLevel == 0.0 ? 0 : m_reach;
}

void CPhasedHead::process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count, bool isAdded)
{
    for (std::size_t done = 0; done < count;) {
        const std::size_t length = std::min(count - done, kPiece);
        double* const even = m_even.data() + m_reach;
        double* const odd = m_odd.data() + m_reach;
        std::copy_n(in.even + done, length, even);
        if (in.odd != nullptr) {
            std::copy_n(in.odd + done, length, odd);
            m_oddPairs = m_reach + length;
        }
        const bool hasOdd = m_oddPairs != 0;
        if (hasOdd && in.odd == nullptr)
            std::fill_n(odd, length, 0.0);
        if (out.even != nullptr) {
            if (hasOdd)
                m_kernels->convolve(m_taps.span(), {even, odd - 1}, out.even + done, length, isAdded);
            else
                m_kernels->convolve(m_evenTaps.span(), {even}, out.even + done, length, isAdded);
        }
        if (out.odd != nullptr) {
            if (hasOdd)
                m_kernels->convolve(m_taps.span(), {odd, even}, out.odd + done, length, isAdded);
            else
                m_kernels->convolve(m_oddTaps.span(), {even}, out.odd + done, length, isAdded);
        }
        keepPast(m_even, length);
        if (hasOdd)
            keepPast(m_odd, length);
        m_oddPairs -= std::min(m_oddPairs, length);
        done += length;
    }
}

void CPhasedHead::keepPast(CAlignedSamples& line, std::size_t length) const
{
    std::copy_n(line.data() + length, m_reach, line.data());
}

} // namespace qrb
