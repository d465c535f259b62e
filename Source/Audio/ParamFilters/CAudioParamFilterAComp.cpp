// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterAComp.h"

#include "Audio/Processes/GainComputer.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

enum ESource : std::size_t { threshold, ratio, knee, attack, release, enable };

constexpr double kLevels[] = {0.05, 0.25, 0.75, 0.95};
constexpr double kSlowestAttack = 0.05; ///< seconds; such an attack is not made up for

/// Average gain over the levels.
double averageGain(const CGainCurve& curve, double threshold)
{
    double sum = 0.0;
    for (const double level : kLevels) {
        const double over = kDecibelsPerNeper * std::log(level) - threshold;
        const double gain = std::exp(kNepersPerDecibel * gainDecibels(curve, over));
        sum += gain * gain;
    }
    return std::sqrt(0.25 * sum);
}

/// How much of the lost gain is given back.
double makeUpShare(double attack, double release)
{
    const double share = 1.0 - std::sqrt(std::min(1.0, attack / kSlowestAttack));
    return attack > release ? share * release / attack : share;
}

} // namespace

void CAudioParamFilterAComp::compute(CStorageSpan sources, std::int32_t group, std::int32_t element,
                                     std::span<double> outValues) const
{
    const auto read = [&](ESource source, double fallback) {
        return sources[source]->value(group, element, 0, fallback);
    };
    outValues[0] = 1.0;
    if (sources.size() > ESource::enable && read(ESource::enable, 1.0) < 0.5)
        return;
    const double slope = read(ESource::ratio, 1.0);
    const bool isExpander = slope > 1.0;
    const CGainCurve curve = makeGainCurve(isExpander ? 1.0 / slope : slope, read(ESource::knee, 6.0));
    const double share = makeUpShare(read(ESource::attack, 0.005), read(ESource::release, 0.15));
    const double makeUp = share / averageGain(curve, read(ESource::threshold, 0.0)) + 1.0 - share;
    outValues[0] = isExpander ? 1.0 / makeUp : makeUp;
}

} // namespace qrb
