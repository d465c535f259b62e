// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <atomic>
#include <cstdint>

namespace qrb {

/// What stands under a path in a CAudioParamPathTree, which owns it.
class CAudioParamPathEntry : public CCheckedObject {
public:
    explicit CAudioParamPathEntry(const CString& path) : m_path(path), m_hash(path.hash()) {}
    CAudioParamPathEntry(const CAudioParamPathEntry&) = delete;
    CAudioParamPathEntry& operator=(const CAudioParamPathEntry&) = delete;

    /// Thread: any.
    [[nodiscard]] const CString& path() const { return m_path; }

private:
    friend class CAudioParamPathTree;

    [[nodiscard]] bool isAt(const CString& path, std::uint32_t hash) const { return m_hash == hash && m_path == path; }

    const CString m_path;
    const std::uint32_t m_hash;
    std::atomic<CAudioParamPathEntry*> m_below[4]{}; ///< by the next two bits of the hash
    CAudioParamPathEntry* m_older = nullptr;         ///< the entry made before this one
};

} // namespace qrb
