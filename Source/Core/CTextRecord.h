// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <atomic>
#include <cstdint>

namespace qrb {

class CObjectDocumentData;

/// An immutable text with what lookups need of it, kept. It lives either alone, counted by its references,
/// or inside a document's string table, which then is what the references count.
/// Thread: any, after construction.
struct CTextRecord {
    CString text;
    bool hasBrace = false; ///< holds a "{", so that it wants expansion
    bool isOff = false;    ///< empty or "false": absent to a reader
    CObjectDocumentData* document = nullptr;
    mutable std::atomic<std::uint32_t> references{0};
    mutable std::atomic<std::uint32_t> cachedHash{0}; ///< 0 until someone asks: few texts are ever looked up

    [[nodiscard]] std::uint32_t hash() const
    {
        std::uint32_t known = cachedHash.load(std::memory_order_relaxed);
        if (known == 0) [[unlikely]] {
            known = text.hash();
            cachedHash.store(known, std::memory_order_relaxed);
        }
        return known;
    }
    /// Takes the text and fills what is derived from it.
    void assign(CString&& value);
    void retain() const;
    void release() const;
};

} // namespace qrb
