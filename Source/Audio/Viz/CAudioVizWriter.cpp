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
    CAudioVizSource& source = collector->source(paramProcessName(nodeName) + suffix);
    if (source.addLine(type))
        m_source = &source;
}

void CAudioVizWriter::close()
{
    if (m_source != nullptr)
        std::exchange(m_source, nullptr)->removeLine();
}

bool CAudioVizWriter::isActive() const
{
    return m_source != nullptr && m_source->isActive();
}

void CAudioVizWriter::setBinCount(std::size_t count)
{
    if (m_source != nullptr)
        m_source->setBinCount(count);
}

std::unique_ptr<CAudioVizData> CAudioVizWriter::takeRecord()
{
    return m_source == nullptr ? nullptr : m_source->take();
}

void CAudioVizWriter::post(std::unique_ptr<CAudioVizData> record)
{
    if (m_source != nullptr)
        m_source->post(std::move(record));
}

} // namespace qrb
