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
/// States that wait without memory being asked for; a single stage may have more.
constexpr std::size_t kSeriesRoom = 128;

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
}

void CFilterBank::reset()
{
    for (CStage& stage : m_stages)
        stage.init();
}

void CFilterBank::run(const double* const* in, double* const* out, std::size_t length)
{
    CFilterBank* const banks[] = {this};
    runInSeries(banks, in, out, length);
}

void CFilterBank::runInSeries(std::span<CFilterBank* const> banks, const double* const* in, double* const* out,
                              std::size_t length)
{
    const std::size_t lineCount = banks[0]->m_lineCount;
    const double* const* source = in;
    CArray<void*, kSeriesRoom> waiting; // states of stages of one kind, none of them fading
    const CDCDAWFilterKind* kind = nullptr;
    const auto runWaiting = [&] {
        if (waiting.empty())
            return;
        runFilterSeries(*kind, waiting.data(), waiting.size() / lineCount, lineCount, source, out, length);
        source = out;
        waiting.clear();
    };
    for (const CFilterBank* bank : banks) {
        for (const CStage& stage : bank->m_stages) {
            const bool isFading = stage.isFading();
            if (isFading || stage.kind != kind || waiting.size() + lineCount > kSeriesRoom)
                runWaiting();
            kind = stage.kind;
            if (isFading) {
                stage.runAlone(source, out, length);
                source = out;
            } else {
                waiting.appendAll(stage.states.span());
            }
        }
    }
    runWaiting();
}

bool CFilterBank::hasHalfBands() const
{
    return std::ranges::any_of(m_stages, [](const CStage& stage) { return stage.halfBandSize() > 0; });
}

bool CFilterBank::canRunWith(const CFilterBank& other) const
{
    if (m_stages.empty() || m_stages.size() > kMaxTogetherStages || m_stages.size() != other.m_stages.size())
        return false;
    for (std::size_t k = 0; k < m_stages.size(); ++k) {
        const CStage& stage = m_stages[k];
        if (stage.isFading() || stage.halfBandSize() > 0 || stage.kind->id != other.m_stages[k].kind->id)
            return false;
    }
    return true;
}

void CFilterBank::runTogether(std::span<CFilterBank* const> banks, const double* const* in, double* const* out,
                              std::size_t length)
{
    const CArray<CStage, 2>& stages = banks[0]->m_stages;
    const double* const* source = in;
    for (std::size_t first = 0; first < stages.size(); source = out) {
        void* states[kMaxTogetherStages * kMaxTogetherLines];
        void** next = states;
        std::size_t lines = 0;
        std::size_t end = first;
        for (; end < stages.size() && stages[end].kind->id == stages[first].kind->id; ++end) {
            lines = 0;
            for (const CFilterBank* bank : banks) {
                next = std::copy(bank->m_stages[end].states.begin(), bank->m_stages[end].states.end(), next);
                lines += bank->m_lineCount;
            }
        }
        runFilterSeries(*stages[first].kind, states, end - first, lines, source, out, length);
        first = end;
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
