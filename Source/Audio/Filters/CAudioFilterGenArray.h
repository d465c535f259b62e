// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designers to choose from by index. Filled by its children while the document loads, read-only afterwards.
class CAudioFilterGenArray : public CObject {
public:
    /// One more than the highest index that a document may use.
    static constexpr int kMaxCount = 1024;

    /// The designer of that index, or null. Thread: any.
    [[nodiscard]] const CAudioFilterGen* get(int index) const;
    [[nodiscard]] int count() const { return static_cast<int>(m_designers.size()); }

    /// Enters a designer; a later one of the same index replaces it.
    void set(int index, const CAudioFilterGen& designer);

private:
    CArray<const CAudioFilterGen*, 8> m_designers;
};

} // namespace qrb
