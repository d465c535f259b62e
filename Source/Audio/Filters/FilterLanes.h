// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/FilterStates.h"

#include <cstddef>

namespace qrb {

/// Two lines side by side; every operation is that of the plain double in each lane.
using CLanes2 = double __attribute__((vector_size(16)));

inline double sampleAt(const double* const* lines, std::size_t at, double*)
{
    return lines[0][at];
}
inline CLanes2 sampleAt(const double* const* lines, std::size_t at, CLanes2*)
{
    return CLanes2{lines[0][at], lines[1][at]};
}
inline void store(double* const* lines, std::size_t at, double value)
{
    lines[0][at] = value;
}
inline void store(double* const* lines, std::size_t at, CLanes2 value)
{
    lines[0][at] = value[0];
    lines[1][at] = value[1];
}

/// Takes one number out of the states of a stage's lines.
template <class V, class State, class Get>
V gatherLanes(State* const* states, Get get)
{
    if constexpr (sizeof(V) == sizeof(double))
        return get(*states[0]);
    else
        return V{get(*states[0]), get(*states[1])};
}
inline double laneOf(double value, std::size_t)
{
    return value;
}
inline double laneOf(CLanes2 value, std::size_t lane)
{
    return value[lane];
}

/// Output of a biquad in direct form II with the states before the step; `w` is the new one.
template <EFilterKind Shape, class V>
inline V biquadOutput(V b0, [[maybe_unused]] V b1, [[maybe_unused]] V b2, V w, [[maybe_unused]] V w1, V w2)
{
    if constexpr (Shape == EFilterKind::biquadLowPass)
        return b0 * ((w + w2) + (w1 + w1));
    else if constexpr (Shape == EFilterKind::biquadHighPass)
        return b0 * ((w + w2) - (w1 + w1));
    else if constexpr (Shape == EFilterKind::biquadBandPass)
        return b0 * (w - w2);
    else if constexpr (Shape == EFilterKind::biquadNotch)
        return b0 * (w + w2) + b1 * w1;
    else
        return b0 * w + (b1 * w1 + b2 * w2);
}

/// A biquad at rest from fades, for as many lines as V has lanes.
template <EFilterKind Shape, class V>
class CBiquadLanes {
public:
    using State = CBiquadState;

    void load(State* const* states)
    {
        m_b0 = gatherLanes<V>(states, [](const State& s) { return s.current.b0; });
        m_b1 = gatherLanes<V>(states, [](const State& s) { return s.current.b1; });
        m_b2 = gatherLanes<V>(states, [](const State& s) { return s.current.b2; });
        m_a1 = gatherLanes<V>(states, [](const State& s) { return s.current.a1; });
        m_a2 = gatherLanes<V>(states, [](const State& s) { return s.current.a2; });
        m_w1 = gatherLanes<V>(states, [](const State& s) { return s.w1; });
        m_w2 = gatherLanes<V>(states, [](const State& s) { return s.w2; });
    }
    void save(State* const* states) const
    {
        for (std::size_t i = 0; i < sizeof(V) / sizeof(double); ++i) {
            states[i]->w1 = laneOf(m_w1, i);
            states[i]->w2 = laneOf(m_w2, i);
        }
    }
    /// The newest state joins last, which leaves one multiplication and one addition between two samples.
    V step(V x)
    {
        const V w = (x + m_a2 * m_w2) + m_a1 * m_w1;
        const V y = biquadOutput<Shape>(m_b0, m_b1, m_b2, w, m_w1, m_w2);
        m_w2 = m_w1;
        m_w1 = w;
        return y;
    }

private:
    V m_b0, m_b1, m_b2, m_a1, m_a2, m_w1, m_w2;
};

/// Output of a first-order stage with the state after the step.
template <EFilterKind Kind, class V>
inline V firstOrderOutput([[maybe_unused]] V g, [[maybe_unused]] V x, V z)
{
    if constexpr (Kind == EFilterKind::lowPass1)
        return z;
    else if constexpr (Kind == EFilterKind::highPass1)
        return x - z;
    else
        return (x - z) * g;
}

/// A first-order stage at rest from fades.
template <EFilterKind Kind, class V>
class CFirstOrderLanes {
public:
    using State = CFirstOrderState;

    void load(State* const* states)
    {
        m_k = gatherLanes<V>(states, [](const State& s) { return s.current.k; });
        m_g = gatherLanes<V>(states, [](const State& s) { return s.current.g; });
        m_z = gatherLanes<V>(states, [](const State& s) { return s.z; });
    }
    void save(State* const* states) const
    {
        for (std::size_t i = 0; i < sizeof(V) / sizeof(double); ++i)
            states[i]->z = laneOf(m_z, i);
    }
    V step(V x)
    {
        m_z += (x - m_z) * m_k;
        return firstOrderOutput<Kind>(m_g, x, m_z);
    }

private:
    V m_k, m_g, m_z;
};

/// Runs `Count` stages in series over the lines of V. `states` holds the lines of the first stage, then those of the
/// second, and so on. Several stages in one loop overlap: each waits only for its own state and the sample before it.
template <template <EFilterKind, class> class Lanes, EFilterKind Kind, std::size_t Count, class V>
void runLanes(void* const* states, const double* const* in, double* const* out, std::size_t length)
{
    constexpr std::size_t kLines = sizeof(V) / sizeof(double);
    using State = typename Lanes<Kind, V>::State;
    Lanes<Kind, V> stages[Count];
    State* typed[Count][kLines];
    for (std::size_t k = 0; k < Count; ++k) {
        for (std::size_t i = 0; i < kLines; ++i)
            typed[k][i] = static_cast<State*>(states[k * kLines + i]);
        stages[k].load(typed[k]);
    }
    for (std::size_t n = 0; n < length; ++n) {
        V x = sampleAt(in, n, static_cast<V*>(nullptr));
#pragma GCC unroll 8
        for (std::size_t k = 0; k < Count; ++k)
            x = stages[k].step(x);
        store(out, n, x);
    }
    for (std::size_t k = 0; k < Count; ++k)
        stages[k].save(typed[k]);
}

} // namespace qrb
