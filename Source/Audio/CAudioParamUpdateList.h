// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamUpdateRecord.h"

#include <cstddef>

namespace qrb {

/// Changes in the order in which they were made. Owns its records. Not locked.
class CAudioParamUpdateList : public CCheckedObject {
public:
    CAudioParamUpdateList() = default;
    ~CAudioParamUpdateList() override;
    CAudioParamUpdateList(const CAudioParamUpdateList&) = delete;
    CAudioParamUpdateList& operator=(const CAudioParamUpdateList&) = delete;

    [[nodiscard]] bool empty() const { return m_first == nullptr; }
    [[nodiscard]] std::size_t size() const { return m_count; }

    void append(CAudioParamUpdateRecord* record);
    /// Takes the first record out; null at the end.
    [[nodiscard]] CAudioParamUpdateRecord* takeFirst();
    /// Appends all records of another list, which is empty then.
    void takeAll(CAudioParamUpdateList& from);
    void remove(CAudioParamUpdateRecord& record);

private:
    CAudioParamUpdateRecord* m_first = nullptr;
    CAudioParamUpdateRecord* m_last = nullptr;
    std::size_t m_count = 0;
};

} // namespace qrb
