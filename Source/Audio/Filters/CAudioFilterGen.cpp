// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGen.h"

#include <numbers>

namespace qrb {

std::complex<double> CAudioFilterGen::response(double frequency, double sampleRate,
                                               const CAudioFilterParams& params) const
{
    CAudioFilterStageList list;
    design(list, sampleRate, params, nullptr);
    return list.response(2.0 * std::numbers::pi * frequency / sampleRate);
}

} // namespace qrb
