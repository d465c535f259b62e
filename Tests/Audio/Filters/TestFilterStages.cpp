// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/BiquadSeriesKernels.h"
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/HalfBandKernels.h"
#include "Audio/Filters/HalfBandState.h"
#include "Audio/VectorWidth.h"
#include "Tests/Audio/Filters/FilterWorld.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace qrb {
namespace {

using CSignal = std::vector<double>;
using CCoefficients = std::vector<double>;

constexpr double kRate = 8000.0; // fades of 200 and 120 samples
constexpr int kLength = 1500;

/// Memory aligned as a stage asks for.
struct alignas(16) CLanesMemory {
    double numbers[2];
};

/// New coefficients at a sample.
struct CChange {
    int at;
    CCoefficients to;
};

/// First model: a difference equation that may change its coefficients at every sample, in the memory of form II.
struct CPlainBiquad {
    double v1 = 0.0;
    double v2 = 0.0;
    double step(const CCoefficients& c, double x)
    {
        const double v = x - c[3] * v1 - c[4] * v2;
        const double y = c[0] * v + c[1] * v1 + c[2] * v2;
        v2 = v1;
        v1 = v;
        return y;
    }
};

/// Follows the changes in fades of `length` samples with weights from the cosine itself. `start(from)` is called as a
/// fade begins, `step(now, from, to, weightOfOld)` for each sample; without a fade both sets are the same.
template <class Start, class Step>
CSignal followFades(const CSignal& in, const CCoefficients& first, const std::vector<CChange>& changes, int length,
                    Start start, Step step)
{
    CCoefficients from = first;
    CCoefficients to;
    std::optional<CCoefficients> waiting;
    int position = -1;
    CSignal out;
    for (int n = 0; n < kLength; ++n) {
        for (const CChange& change : changes)
            if (change.at == n)
                waiting = change.to;
        if (position < 0 && waiting) {
            to = *waiting;
            waiting.reset();
            position = 0;
            start();
        }
        const double x = in[static_cast<std::size_t>(n)];
        if (position < 0) {
            out.push_back(step(x, from, from, 0.0)); // what moved last goes on
            continue;
        }
        out.push_back(step(x, from, to, 0.5 + 0.5 * std::cos(std::numbers::pi * position / length)));
        if (++position == length) {
            from = to;
            position = -1;
        }
    }
    return out;
}

CCoefficients blend(const CCoefficients& from, const CCoefficients& to, double weight)
{
    CCoefficients mixed;
    for (std::size_t i = 0; i < from.size(); ++i)
        mixed.push_back(weight * from[i] + (1.0 - weight) * to[i]);
    return mixed;
}

CSignal modelBiquad(const CSignal& in, const CCoefficients& first, const std::vector<CChange>& changes)
{
    CPlainBiquad moving;
    CPlainBiquad old;
    return followFades(
        in, first, changes, 200, [&] { old = moving; },
        [&](double x, const CCoefficients& from, const CCoefficients& to, double weight) {
            const double before = old.step(from, x);
            const double after = moving.step(blend(from, to, weight), x);
            return weight * before + (1.0 - weight) * after;
        });
}

/// `kind` tells what comes out of the smoother.
CSignal modelFirstOrder(const CSignal& in, const CCoefficients& first, const std::vector<CChange>& changes,
                        EFilterKind kind)
{
    double z = 0.0;
    return followFades(
        in, first, changes, 120, [] {},
        [&](double x, const CCoefficients& from, const CCoefficients& to, double weight) {
            const double kFrom = 1.0 + from[2];
            const double kTo = 1.0 + to[2];
            const double g = weight * from[1] / from[2] + (1.0 - weight) * to[1] / to[2];
            z += (x - z) * (weight * kFrom + (1.0 - weight) * kTo);
            return kind == EFilterKind::lowPass1 ? z : kind == EFilterKind::highPass1 ? x - z : (x - z) * g;
        });
}

/// The stage itself, in blocks of `cut`.
CSignal runStage(EFilterKind id, const CSignal& in, const CCoefficients& first, const std::vector<CChange>& changes,
                 int cut)
{
    const CDCDAWFilterKind& kind = *filterKind(id);
    std::vector<CLanesMemory> memory((kind.stateSize + 15) / 16);
    kind.init.function(memory.data(), first.data(), kRate);
    CSignal out(in.size());
    for (int n = 0; n < kLength;) {
        int end = std::min(n + cut, kLength);
        for (const CChange& change : changes) {
            if (change.at == n)
                kind.update.function(memory.data(), change.to.data(), kRate);
            else if (change.at > n)
                end = std::min(end, change.at);
        }
        kind.run.function(memory.data(), in.data() + n, out.data() + n, static_cast<std::size_t>(end - n));
        n = end;
    }
    return out;
}

class FilterStages : public FilterTest {
protected:
    CCoefficients coefficients(const std::string& name, double frequency, double gain, EFilterKind& id)
    {
        const CAudioFilterStageList list = design(name, kRate, params(frequency, gain, 0.9));
        if (list.stages().empty()) { // beyond what the rate carries
            ADD_FAILURE() << name << " " << frequency;
            return {};
        }
        id = list.stages()[0].id;
        CCoefficients made(list.stages()[0].b.begin(), list.stages()[0].b.end());
        made.insert(made.end(), list.stages()[0].a.begin(), list.stages()[0].a.end());
        return made;
    }
    CFilterBank bank(const std::string& name, std::size_t stages, std::size_t lines)
    {
        CAudioFilterStageList list;
        for (std::size_t i = 0; i < stages; ++i)
            gen(name).design(list, kRate, params(300 + 200 * static_cast<double>(i), 3, 0.9), nullptr);
        CFilterBank made;
        made.setLineCount(lines);
        made.apply(list, kRate);
        return made;
    }
};

TEST_F(FilterStages, FollowTheModelThroughFadesHoweverBlocksAreCut)
{
    const CSignal in = noise(kLength, 5);
    for (const char* name : {"rbj0", "rbj1", "rbj2", "rbj4", "rbj6", "lp1", "hp1", "hp1g"}) {
        EFilterKind id{};
        const CCoefficients first = coefficients(name, 500, 2.0, id);
        const CCoefficients never = coefficients(name, 90, 0.01, id);
        // One alone; three within one fade, of which the second is never heard; one that comes as a fade ends.
        const std::vector<CChange> changes = {{50, coefficients(name, 2000, 0.5, id)},
                                              {400, coefficients(name, 50, 4.0, id)},
                                              {401, never},
                                              {437, coefficients(name, 900, 1.0, id)},
                                              {1000, coefficients(name, 3000, 1.0, id)},
                                              {1120, coefficients(name, 3100, 1.0, id)},
                                              {1250, coefficients(name, 500, 2.0, id)}};
        const bool isBiquad = first.size() == 5;
        const CSignal want = isBiquad ? modelBiquad(in, first, changes) : modelFirstOrder(in, first, changes, id);
        const CSignal whole = runStage(id, in, first, changes, kLength);
        for (std::size_t n = 0; n < whole.size(); ++n)
            ASSERT_NEAR(whole[n], want[n], 1e-11) << name << " " << n;
        for (const int cut : {1, 17, 199, 200, 201})
            EXPECT_EQ(runStage(id, in, first, changes, cut), whole) << name << " " << cut;
    }
}

TEST_F(FilterStages, HalfBandsFollowTheirSectionsAndTakeNewCoefficientsAtRest)
{
    const CSignal in = noise(kLength, 6);
    for (std::size_t count = 1; count <= 8; ++count) {
        CCoefficients both;
        for (std::size_t i = 0; i < 2 * count; ++i)
            both.push_back(0.03 + 0.9 * static_cast<double>(i) / static_cast<double>(2 * count));
        CSignal want;
        std::array<std::vector<CSignal>, 2> paths; // signals of each path: input, then section outputs
        for (auto& path : paths)
            path.assign(count + 1, CSignal(kLength + 2, 0.0));
        for (std::size_t t = 2; t < kLength + 2; ++t) {
            for (std::size_t p = 0; p < 2; ++p) {
                paths[p][0][t] = in[t - 2];
                for (std::size_t i = 1; i <= count; ++i)
                    paths[p][i][t] =
                        (paths[p][i - 1][t] - paths[p][i][t - 2]) * both[p * count + i - 1] + paths[p][i - 1][t - 2];
            }
            want.push_back((paths[0][count][t] + paths[1][count][t - 1]) * 0.5);
        }
        const auto id = static_cast<EFilterKind>(count);
        const CSignal whole = runStage(id, in, both, {}, kLength);
        for (std::size_t n = 0; n < whole.size(); ++n)
            ASSERT_NEAR(whole[n], want[n], 1e-12) << count << " " << n;
        EXPECT_EQ(runStage(id, in, both, {}, 7), whole) << count;
    }
    const CCoefficients one = {0.2, 0.7};
    CSignal fromRest(in.begin() + 301, in.end());
    fromRest.resize(in.size());
    const CSignal changed = runStage(EFilterKind::halfBand1, in, {0.1, 0.5}, {{301, one}}, 64);
    const CSignal fresh = runStage(EFilterKind::halfBand1, fromRest, one, {}, 64);
    EXPECT_TRUE(std::equal(changed.begin() + 301, changed.end(), fresh.begin()));
}

TEST_F(FilterStages, HalfBandsThatChangeTheRateGiveTheBitsOfTheStageAroundTheZeros)
{
    constexpr std::size_t kSteps = kLength / 2;
    for (const CHalfBandKernels* kernels :
         {&pairHalfBandKernels(), hasVectorWidth(EVectorWidth::quads) ? &quadHalfBandKernels() : nullptr}) {
        for (std::size_t trial = 0; kernels != nullptr && trial < 40; ++trial) {
            const std::size_t count = 1 + trial / 5;
            const std::size_t lines = 1 + trial % 5;
            CCoefficients both;
            for (std::size_t i = 0; i < 2 * count; ++i)
                both.push_back(0.03 + 0.9 * static_cast<double>(i) / static_cast<double>(2 * count));
            const CDCDAWFilterKind& kind = *filterKind(static_cast<EFilterKind>(count));
            std::vector<CSignal> low;
            std::vector<CSignal> high;
            std::vector<CSignal> made(lines, CSignal(kLength));
            std::vector<CSignal> kept(lines, CSignal(kSteps));
            std::vector<std::array<CLanesMemory, 64>> memory(2 * lines);
            std::vector<void*> states;
            for (std::size_t i = 0; i < 2 * lines; ++i) {
                kind.init.function(&memory[i], both.data(), kRate);
                states.push_back(&memory[i]);
            }
            for (std::size_t i = 0; i < lines; ++i) {
                low.push_back(noise(kSteps, static_cast<unsigned>(7 + i)));
                high.push_back(noise(kLength, static_cast<unsigned>(20 + i)));
            }
            std::size_t cut = 1;
            for (std::size_t done = 0; done < kSteps; cut = cut % 23 + 1) {
                const std::size_t steps = std::min(cut, kSteps - done);
                std::vector<const double*> from[2];
                std::vector<double*> to[2];
                for (std::size_t i = 0; i < lines; ++i) {
                    from[0].push_back(low[i].data() + done);
                    to[0].push_back(made[i].data() + 2 * done);
                    from[1].push_back(high[i].data() + 2 * done);
                    to[1].push_back(kept[i].data() + done);
                }
                ASSERT_TRUE(isHalfBandStuffed(states[0], count));
                kernels->up(count, states.data(), lines, from[0].data(), to[0].data(), steps);
                kernels->down(count, states.data() + lines, lines, from[1].data(), to[1].data(), steps);
                done += steps;
            }
            for (std::size_t i = 0; i < lines; ++i) {
                CSignal stuffed(kLength, 0.0);
                for (std::size_t n = 0; n < kSteps; ++n)
                    stuffed[2 * n] = 2.0 * low[i][n];
                EXPECT_EQ(made[i], runStage(kind.id, stuffed, both, {}, kLength)) << count << " " << lines;
                const CSignal all = runStage(kind.id, high[i], both, {}, kLength);
                for (std::size_t n = 0; n < kSteps; ++n)
                    ASSERT_EQ(kept[i][n], all[2 * n]) << count << " " << lines << " " << n;
            }
        }
    }
}

TEST_F(FilterStages, SideBySideAndInSeriesGiveTheBitsOfStagesAlone)
{
    for (const char* name : {"rbj0", "rbj1", "rbj2", "rbj4", "rbj6", "lp1", "hp1", "hp1g", "hbf62t4"}) {
        for (const std::size_t stages : {1u, 2u, 5u, 7u}) {
            for (const std::size_t lines : {1u, 2u, 3u, 4u}) {
                CFilterBank together = bank(name, stages, lines);
                for (std::size_t line = 0; line < lines; ++line) {
                    std::vector<CSignal> signals;
                    std::vector<const double*> in;
                    std::vector<double*> out;
                    for (std::size_t i = 0; i < lines; ++i)
                        signals.push_back(noise(kLength, static_cast<unsigned>(i)));
                    for (CSignal& signal : signals) {
                        in.push_back(signal.data());
                        out.push_back(signal.data());
                    }
                    CSignal alone = signals[line];
                    for (std::size_t k = 0; k < stages; ++k) {
                        CAudioFilterStageList list;
                        gen(name).design(list, kRate, params(300 + 200 * static_cast<double>(k), 3, 0.9), nullptr);
                        const CAudioFilterStage& stage = list.stages()[0];
                        CCoefficients own(stage.b.begin(), stage.b.end());
                        own.insert(own.end(), stage.a.begin(), stage.a.end());
                        alone = runStage(stage.id, alone, own, {}, 100);
                    }
                    together.reset();
                    together.run(in.data(), out.data(), kLength - 1);
                    for (std::size_t i = 0; i < lines; ++i) {
                        in[i] += kLength - 1;
                        out[i] += kLength - 1;
                    }
                    together.run(in.data(), out.data(), 1);
                    EXPECT_EQ(signals[line], alone) << name << " " << stages << " " << lines;
                }
            }
        }
    }
}

TEST_F(FilterStages, BiquadsThatRunSkewedGiveTheBitsOfStagesAlone)
{
    for (const CBiquadSeriesKernels* kernels :
         {&pairBiquadSeriesKernels(), hasVectorWidth(EVectorWidth::quads) ? &quadBiquadSeriesKernels() : nullptr}) {
        for (std::size_t trial = 0; kernels != nullptr && trial < 120; ++trial) {
            const char* name = std::array{"rbj0", "rbj1", "rbj2", "rbj4", "rbj6"}[trial % 5];
            const std::size_t stages = 1 + trial / 5 % 6;
            const std::size_t lines = 2 + trial / 30 * 2;
            CSignal samples[8];
            CSignal alone[8];
            std::vector<CBiquadState> memory(stages * lines);
            std::vector<CBiquadState*> states;
            for (std::size_t i = 0; i < lines; ++i)
                alone[i] = samples[i] = noise(kLength, static_cast<unsigned>(i));
            EFilterKind id{};
            for (std::size_t place = 0; place < memory.size(); ++place) {
                const std::size_t line = place % lines;
                const CCoefficients own = coefficients(name, 200.0 + 60.0 * static_cast<double>(place), 2.0, id);
                initBiquad(&memory[place], own.data(), kRate);
                states.push_back(&memory[place]);
                alone[line] = runStage(id, alone[line], own, {}, kLength);
            }
            std::size_t done = 0;
            for (std::size_t cut = 4 * stages; done < kLength; cut += 7) {
                const std::size_t length = kLength - done < 2 * cut ? kLength - done : cut;
                const double* in[8];
                double* out[8];
                for (std::size_t i = 0; i < lines; ++i)
                    in[i] = out[i] = samples[i].data() + done;
                if (!runBiquadSeries(*kernels, id, states.data(), stages, lines, in, out, length))
                    break;
                done += length;
            }
            EXPECT_TRUE(done == kLength || stages == 1 || lines > 2) << name << " " << stages << " " << lines;
            for (std::size_t i = 0; i < lines && done == kLength; ++i)
                EXPECT_EQ(samples[i], alone[i]) << name << " " << stages << " " << lines;
        }
    }
}

TEST_F(FilterStages, ABankKeepsWhatADesignKeepsAndDropsTheRest)
{
    CFilterBank running = bank("rbj6", 2, 1);
    CSignal signal = noise(kLength, 1);
    const double* in[] = {signal.data()};
    double* out[] = {signal.data()};
    CAudioFilterStageList list = design("lp1", kRate, params(100, 1, 1));
    gen("firlp").design(list, kRate, {}, nullptr);
    running.apply(list, kRate);
    running.run(in, out, kLength);
    EXPECT_EQ(signal, runStage(EFilterKind::lowPass1, noise(kLength, 1),
                               {list.stages()[0].b[0], 0.0, list.stages()[0].a[0]}, {}, 64))
        << "a stage of another kind starts at rest";
    running.apply(design("lp1", kRate, params(9000, 1, 1)), kRate);
    EXPECT_TRUE(running.empty()) << "above half the rate the signal passes";
}

} // namespace
} // namespace qrb
