// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizList.h"

#include <utility>

namespace qrb {

CAudioVizList& CAudioVizList::operator=(CAudioVizList&& other) noexcept
{
    if (this != &other) {
        clear();
        append(other);
    }
    return *this;
}

void CAudioVizList::pushBack(std::unique_ptr<CAudioVizData> record)
{
    CAudioVizData* const added = record.release();
    added->m_next = nullptr;
    (m_last == nullptr ? m_first : m_last->m_next) = added;
    m_last = added;
    ++m_count;
}

std::unique_ptr<CAudioVizData> CAudioVizList::popFront()
{
    std::unique_ptr<CAudioVizData> record(m_first);
    if (record != nullptr) {
        m_first = std::exchange(record->m_next, nullptr);
        if (--m_count == 0)
            m_last = nullptr;
    }
    return record;
}

void CAudioVizList::append(CAudioVizList& other) noexcept
{
    if (other.m_first == nullptr)
        return;
    (m_last == nullptr ? m_first : m_last->m_next) = other.m_first;
    m_last = other.m_last;
    m_count += other.m_count;
    other.m_first = nullptr;
    other.m_last = nullptr;
    other.m_count = 0;
}

void CAudioVizList::clear() noexcept
{
    while (popFront() != nullptr) {
    }
}

} // namespace qrb
