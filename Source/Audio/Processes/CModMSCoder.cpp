// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModMSCoder.h"

#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/LineMath.h"

#include <algorithm>
#include <utility>

namespace qrb {

CErrorPtr CModMSCoder::init()
{
    QRB_TRY(CModRouting::init());
    m_pairsSlot = regParam(0, 0.0);
    m_modeSlot = regParam(1, 0.0);
    m_bypassSlot = regParam(2, 0.0);
    return nullptr;
}

void CModMSCoder::makeRoutes()
{
    const std::span<const CAudioLine> inputs = lines();
    for (std::size_t i = 0; i < inputs.size(); ++i)
        addRoute({inputs[i].channel, inputs[i].group, static_cast<int>(i)});
    m_isDecoder = isOn(m_modeSlot, elementIndex());
    m_pairs.clear();
    if (!isOn(m_bypassSlot, elementIndex()))
        findPairs();
}

void CModMSCoder::findPairs()
{
    const std::span<const CAudioLine> inputs = lines();
    CArray<int, CAudioProcessPort::kMaxLines> order;
    for (std::size_t i = 0; i < inputs.size(); ++i)
        order.append(static_cast<int>(i));
    const auto channelOf = [inputs](int index) { return inputs[static_cast<std::size_t>(index)].channel; };
    // A stable sort would take memory from the system; the index as a second key does the same.
    std::ranges::sort(order.span(), {}, [&](int index) { return std::pair(channelOf(index), index); });

    for (const int index : order) {
        const int number = m_pairsSlot.valueInt(paramGroup(), channelOf(index));
        if (number == 0)
            continue;
        const auto pair = std::ranges::find(m_pairs.span(), number, &CPair::number);
        if (pair == m_pairs.span().end())
            m_pairs.append({number, index});
        else if (pair->second < 0)
            pair->second = index;
    }
    const auto kept = std::remove_if(m_pairs.begin(), m_pairs.end(), [](const CPair& pair) { return pair.second < 0; });
    m_pairs.resize(static_cast<std::size_t>(kept - m_pairs.begin()));
}

void CModMSCoder::processPair(const CPair& pair)
{
    const auto length = static_cast<std::size_t>(blockLength());
    const std::span<const double> a(lines()[static_cast<std::size_t>(pair.first)].buffer.data(), length);
    const std::span<const double> b(lines()[static_cast<std::size_t>(pair.second)].buffer.data(), length);
    CSampleBuffer first = pool().get(blockLength());
    CSampleBuffer second = pool().get(blockLength());
    (m_isDecoder ? decodeMidSide : encodeMidSide)(a, b, {first.data(), length}, {second.data(), length});
    output().send(pair.first, first, blockLength());
    output().send(pair.second, second, blockLength());
}

void CModMSCoder::processLines()
{
    for (const CPair& pair : m_pairs)
        processPair(pair);
    const std::span<const CAudioLine> inputs = lines();
    for (int i = 0; i < static_cast<int>(inputs.size()); ++i) {
        const auto holdsLine = [i](const CPair& pair) { return pair.first == i || pair.second == i; };
        if (std::ranges::none_of(m_pairs.span(), holdsLine))
            output().send(i, inputs[static_cast<std::size_t>(i)].buffer, blockLength());
    }
}

} // namespace qrb
