// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"

#include <cstddef>
#include <memory>

namespace qrb {

/// Records in a row, owned. Whatever the length, a step takes the same time and no memory, since the records are the
/// links.
class CAudioVizList {
public:
    CAudioVizList() = default;
    CAudioVizList(CAudioVizList&& other) noexcept { append(other); }
    CAudioVizList& operator=(CAudioVizList&& other) noexcept;
    ~CAudioVizList() { clear(); }

    [[nodiscard]] std::size_t size() const { return m_count; }
    [[nodiscard]] bool empty() const { return m_count == 0; }
    [[nodiscard]] CAudioVizData* first() { return m_first; }
    [[nodiscard]] static CAudioVizData* next(const CAudioVizData& record) { return record.m_next; }

    void pushBack(std::unique_ptr<CAudioVizData> record);
    /// Null from an empty list.
    [[nodiscard]] std::unique_ptr<CAudioVizData> popFront();
    /// Moves all records of the other list behind those of this one.
    void append(CAudioVizList& other) noexcept;
    void clear() noexcept;

private:
    CAudioVizData* m_first = nullptr;
    CAudioVizData* m_last = nullptr;
    std::size_t m_count = 0;
};

} // namespace qrb
