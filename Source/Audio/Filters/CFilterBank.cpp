// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterBank.h"

#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterStates.h"
#include "Audio/Filters/HalfBandKernels.h"
#include "Audio/Filters/HalfBandState.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kStateAlignment = 16;

/// The kind that runs a designed stage; null for taps.
const CDCDAWFilterKind* kindOf(const CAudioFilterStage& stage)
{
    return stage.kind != nullptr ? stage.kind : filterKind(stage.id);
}

} // namespace

void CFilterBank::CStage::init()
{
    for (void* state : states)
        kind->init.function(state, coefficients.data(), sampleRate);
}

bool CFilterBank::CStage::isFading() const
{
    // The lines get their coefficients at the same sample, so their fades stand alike.
    return isFilterFading(kind->id, states[0]);
}

std::size_t CFilterBank::CStage::halfBandSize() const
{
    return kind->id <= EFilterKind::halfBand8 ? static_cast<std::size_t>(kind->id) : 0;
}

void CFilterBank::CStage::runAlone(const double* const* in, double* const* out, std::size_t length) const
{
    std::size_t line = 0;
    for (; isBiquad(kind->id) && line + 2 <= states.size(); line += 2)
        runBiquadPair(kind->id, states.data() + line, in + line, out + line, length);
    for (; line < states.size(); ++line)
        kind->run.function(states[line], in[line], out[line], length);
}

void CFilterBank::setLineCount(std::size_t count)
{
    if (count != m_lineCount)
        m_stages.clear();
    m_lineCount = count;
}

void CFilterBank::apply(const CAudioFilterStageList& list, double sampleRate)
{
    std::size_t place = 0;
    for (const CAudioFilterStage& designed : list.stages()) {
        const CDCDAWFilterKind* kind = kindOf(designed);
        if (kind == nullptr)
            continue;
        const bool isNew = place >= m_stages.size() || m_stages[place].kind->id != kind->id;
        if (place >= m_stages.size())
            m_stages.append(CStage{});
        CStage& stage = m_stages[place++];
        stage.coefficients.clear();
        for (const double b : designed.b)
            stage.coefficients.append(b);
        for (const double a : designed.a)
            stage.coefficients.append(a);
        stage.kind = kind;
        stage.sampleRate = sampleRate;
        if (isNew) {
            const std::size_t bytes = (kind->stateSize + kStateAlignment - 1) / kStateAlignment * kStateAlignment;
            stage.stride = bytes / sizeof(double);
            stage.memory.clear();
            stage.memory.resize(stage.stride * m_lineCount);
            stage.states.clear();
            for (std::size_t line = 0; line < m_lineCount; ++line)
                stage.states.append(stage.memory.data() + line * stage.stride);
            stage.init();
        } else {
            for (void* state : stage.states)
                kind->update.function(state, stage.coefficients.data(), sampleRate);
        }
    }
    while (m_stages.size() > place)
        m_stages.removeLast();
    m_series.resize(m_stages.size() * m_lineCount);
}

void CFilterBank::reset()
{
    for (CStage& stage : m_stages)
        stage.init();
}

void CFilterBank::run(const double* const* in, double* const* out, std::size_t length)
{
    const double* const* source = in;
    for (std::size_t first = 0; first < m_stages.size();) {
        const CStage& stage = m_stages[first];
        std::size_t end = first + 1;
        if (stage.isFading()) {
            stage.runAlone(source, out, length);
        } else {
            while (end < m_stages.size() && m_stages[end].kind->id == stage.kind->id && !m_stages[end].isFading())
                ++end;
            void** next = m_series.data();
            for (std::size_t k = first; k < end; ++k)
                next = std::copy(m_stages[k].states.begin(), m_stages[k].states.end(), next);
            runFilterSeries(*stage.kind, m_series.data(), end - first, m_lineCount, source, out, length);
        }
        first = end;
        source = out;
    }
}

bool CFilterBank::canRunUp() const
{
    return m_stages.size() == 1 && m_stages[0].halfBandSize() > 0 &&
           std::ranges::all_of(m_stages[0].states, [this](const void* state) {
               return isHalfBandStuffed(state, m_stages[0].halfBandSize());
           });
}

void CFilterBank::runUp(const double* const* in, double* const* out, std::size_t steps)
{
    const CStage& stage = m_stages[0];
    halfBandKernels().up(stage.halfBandSize(), stage.states.data(), m_lineCount, in, out, steps);
}

bool CFilterBank::canRunDown() const
{
    return m_stages.size() == 1 && m_stages[0].halfBandSize() > 0 &&
           std::ranges::all_of(m_stages[0].states, isHalfBandEven);
}

void CFilterBank::runDown(const double* const* in, double* const* out, std::size_t steps)
{
    const CStage& stage = m_stages[0];
    halfBandKernels().down(stage.halfBandSize(), stage.states.data(), m_lineCount, in, out, steps);
}

void CFilterBank::forgetOdd()
{
    for (const CStage& stage : m_stages)
        for (void* state : stage.states)
            if (stage.halfBandSize() > 0)
                clearHalfBandOdd(state, stage.halfBandSize());
}

} // namespace qrb
