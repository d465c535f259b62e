// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace qrb {

class CAudioVizData;
class COutputStream;

/// A record as it stands in a message: size, type, fields. Several readers share one.
using CAudioVizBlob = std::shared_ptr<const CByteArray>;

/// The message form of a record.
[[nodiscard]] CAudioVizBlob encodeVizData(const CAudioVizData& record);

/// What one client listens to, and what waits for it. A client that doesn't fetch its records costs bounded memory: each
/// source keeps its latest. Its owner guards it.
class CAudioVizReader : public CCheckedObject {
public:
    /// One more request for a source, or for a source as an export slot brings it (`kind` 0 or more).
    void addListener(std::int32_t kind, const CString& name) { ++m_queues[{kind, name}].listenerCount; }
    void removeListener(std::int32_t kind, const CString& name);
    [[nodiscard]] bool empty() const { return m_queues.empty(); }

    /// Puts a record into the queue of a source that this client listens to; at `limit` the oldest goes.
    void add(std::int32_t kind, const CString& name, const CAudioVizBlob& record, std::size_t limit);
    /// Writes all sources with waiting records and the end mark, and forgets them.
    CErrorPtr write(COutputStream& out);
    void flush();

    /// Takes note of a request at `now`, seconds of the client's clock.
    void tellTime(double now);
    /// Requests a second of late, in whole numbers; 0 while that is not known.
    [[nodiscard]] double rate() const;

private:
    struct CQueue {
        std::int32_t listenerCount = 0;
        CArray<CAudioVizBlob> records; ///< the oldest first
    };
    using CKey = std::pair<std::int32_t, CString>;

    CMap<CKey, CQueue> m_queues;
    double m_lastTime = 0.0;
    double m_interval = 0.0; ///< seconds, smoothed; 0 while unknown
    bool m_hasTime = false;
};

} // namespace qrb
