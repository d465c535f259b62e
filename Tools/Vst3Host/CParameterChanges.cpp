// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CParameterChanges.h"

#include <algorithm>

namespace vst3 {

using namespace Steinberg;
using namespace Steinberg::Vst;

CParameterChanges::CParameterChanges(std::span<const CPoint> points)
{
    for (const CPoint& point : points) {
        auto queue = std::find_if(m_queues.begin(), m_queues.end(),
                                  [&](CQueue& other) { return other.getParameterId() == point.id; });
        if (queue == m_queues.end())
            queue = m_queues.insert(queue, CQueue(point.id));
        queue->points.push_back(point);
    }
}

int32 PLUGIN_API CParameterChanges::getParameterCount()
{
    return static_cast<int32>(m_queues.size());
}

IParamValueQueue* PLUGIN_API CParameterChanges::getParameterData(int32 index)
{
    return &m_queues[static_cast<std::size_t>(index)];
}

tresult PLUGIN_API CParameterChanges::CQueue::getPoint(int32 index, int32& offset, ParamValue& value)
{
    offset = points[static_cast<std::size_t>(index)].offset;
    value = points[static_cast<std::size_t>(index)].value;
    return kResultTrue;
}

} // namespace vst3
