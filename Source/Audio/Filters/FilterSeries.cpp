// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/BiquadSeriesKernels.h"
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterLanes.h"

#include <algorithm>

namespace qrb {

namespace {

/// Most stages in one loop.
constexpr std::size_t kMaxStages = CBiquadSeriesKernels::kMaxSections;
constexpr std::size_t kMaxLines = 2;
constexpr std::size_t kMaxSeriesLines = CBiquadSeriesKernels::kMaxLines;

using CLanesRun = void(void* const*, const double* const*, double* const*, std::size_t);

/// The loops of one kind, by number of stages.
template <template <EFilterKind, class> class Lanes, EFilterKind Kind, class V>
CLanesRun* lanesRun(std::size_t stageCount)
{
    static constexpr CLanesRun* kRuns[kMaxStages] = {runLanes<Lanes, Kind, 1, V>, runLanes<Lanes, Kind, 2, V>,
                                                     runLanes<Lanes, Kind, 3, V>, runLanes<Lanes, Kind, 4, V>,
                                                     runLanes<Lanes, Kind, 5, V>, runLanes<Lanes, Kind, 6, V>};
    return kRuns[stageCount - 1];
}

template <class V>
CLanesRun* lanesRun(EFilterKind kind, std::size_t stageCount)
{
    switch (kind) {
    case EFilterKind::biquad:
        return lanesRun<CBiquadLanes, EFilterKind::biquad, V>(stageCount);
    case EFilterKind::biquadLowPass:
        return lanesRun<CBiquadLanes, EFilterKind::biquadLowPass, V>(stageCount);
    case EFilterKind::biquadHighPass:
        return lanesRun<CBiquadLanes, EFilterKind::biquadHighPass, V>(stageCount);
    case EFilterKind::biquadBandPass:
        return lanesRun<CBiquadLanes, EFilterKind::biquadBandPass, V>(stageCount);
    case EFilterKind::biquadNotch:
        return lanesRun<CBiquadLanes, EFilterKind::biquadNotch, V>(stageCount);
    case EFilterKind::lowPass1:
        return lanesRun<CFirstOrderLanes, EFilterKind::lowPass1, V>(stageCount);
    case EFilterKind::highPass1:
        return lanesRun<CFirstOrderLanes, EFilterKind::highPass1, V>(stageCount);
    case EFilterKind::highPass1Gain:
        return lanesRun<CFirstOrderLanes, EFilterKind::highPass1Gain, V>(stageCount);
    default:
        return nullptr;
    }
}

/// Runs the stages over as many lines as there is a loop for; the number of lines done.
std::size_t runWide(EFilterKind kind, void* const* states, std::size_t stages, std::size_t lineCount, std::size_t line,
                    const double* const* in, double* const* out, std::size_t length)
{
    if (!isBiquad(kind))
        return 0;
    for (std::size_t lines = kMaxSeriesLines; lines >= 2; lines -= 2) {
        if (lineCount - line < lines)
            continue;
        CBiquadState* picked[kMaxStages * kMaxSeriesLines];
        for (std::size_t k = 0; k < stages; ++k)
            for (std::size_t i = 0; i < lines; ++i)
                picked[k * lines + i] = static_cast<CBiquadState*>(states[k * lineCount + line + i]);
        if (runBiquadSeries(biquadSeriesKernels(), kind, picked, stages, lines, in + line, out + line, length))
            return lines;
    }
    return 0;
}

} // namespace

void runFilterSeries(const CDCDAWFilterKind& kind, void* const* states, std::size_t stageCount, std::size_t lineCount,
                     const double* const* in, double* const* out, std::size_t length)
{
    const double* const* source = in;
    for (std::size_t stage = 0; stage < stageCount;) {
        const std::size_t stages = std::min(stageCount - stage, kMaxStages);
        for (std::size_t line = 0; line < lineCount;) {
            const std::size_t done =
                runWide(kind.id, states + stage * lineCount, stages, lineCount, line, source, out, length);
            if (done > 0) {
                line += done;
                continue;
            }
            const std::size_t lines = lineCount - line >= kMaxLines ? kMaxLines : 1;
            void* picked[kMaxStages * kMaxLines];
            for (std::size_t k = 0; k < stages; ++k)
                for (std::size_t i = 0; i < lines; ++i)
                    picked[k * lines + i] = states[(stage + k) * lineCount + line + i];
            CLanesRun* run = lines == 2 ? lanesRun<CLanes2>(kind.id, stages) : lanesRun<double>(kind.id, stages);
            if (run != nullptr) {
                run(picked, source + line, out + line, length);
            } else {
                for (std::size_t i = 0; i < lines; ++i)
                    kind.run.function(picked[i], source[line + i], out[line + i], length);
            }
            line += lines;
        }
        stage += lanesRun<double>(kind.id, 1) != nullptr ? stages : 1;
        source = out;
    }
}

} // namespace qrb
