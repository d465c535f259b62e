// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"

#include <cstddef>
#include <memory>

namespace qrb {

class CAudioVizCollector;
class CAudioVizPool;
class CAudioVizSource;
class CString;

/// A module's end of a source: one for each line that it writes about. Thread: audio.
class CAudioVizWriter {
public:
    CAudioVizWriter() = default;
    CAudioVizWriter(const CAudioVizWriter&) = delete;
    CAudioVizWriter& operator=(const CAudioVizWriter&) = delete;
    ~CAudioVizWriter() { close(); }

    /// Joins the source of a node's name, positions ("#2") left out, and a suffix; nothing to join without a collector.
    /// Opening again for the same does nothing.
    void open(CAudioVizCollector* collector, const CString& nodeName, const char* suffix, EAudioVizType type);
    void close();

    /// Whether anybody listens; if not, records need not be worked out.
    [[nodiscard]] bool isActive() const;
    /// For writers of spectra: how many values a record will have. Those that lie ready are exchanged by and by.
    void setBinCount(std::size_t count);
    /// A record of class T, which is that of the type; null if this one has to be left out.
    template <class T>
    [[nodiscard]] std::unique_ptr<T> take()
    {
        return std::unique_ptr<T>(static_cast<T*>(takeRecord().release()));
    }
    void post(std::unique_ptr<CAudioVizData> record);

private:
    [[nodiscard]] std::unique_ptr<CAudioVizData> takeRecord();

    CAudioVizSource* m_source = nullptr;
    CAudioVizPool* m_pool = nullptr;
};

} // namespace qrb
