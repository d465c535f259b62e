// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizWriter.h"

#include "Audio/CAudioParamPath.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Audio/Viz/CAudioVizSource.h"

#include <utility>

namespace qrb {

void CAudioVizWriter::open(CAudioVizCollector* collector, const CString& nodeName, const char* suffix,
                           EAudioVizType type)
{
    if (collector == nullptr || m_source != nullptr)
        return;
    m_source = &collector->source(paramProcessName(nodeName) + suffix);
    m_pool = &m_source->joinPool(type);
}

void CAudioVizWriter::close()
{
    m_source = nullptr;
    if (m_pool != nullptr)
        std::exchange(m_pool, nullptr)->removeWriter();
}

bool CAudioVizWriter::isActive() const
{
    return m_source != nullptr && m_source->isActive();
}

void CAudioVizWriter::setBinCount(std::size_t count)
{
    if (m_pool != nullptr)
        m_pool->setBinCount(count);
}

std::unique_ptr<CAudioVizData> CAudioVizWriter::takeRecord()
{
    return m_pool == nullptr ? nullptr : m_pool->take();
}

void CAudioVizWriter::post(std::unique_ptr<CAudioVizData> record)
{
    if (m_pool != nullptr)
        m_pool->post(std::move(record));
}

} // namespace qrb
