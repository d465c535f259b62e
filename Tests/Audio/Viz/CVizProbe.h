// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizCollector.h"
#include "Audio/Viz/CAudioVizData.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qrb {

/// A client as the collector sees it: asks, fetches, and decodes what it gets.
class CVizProbe {
public:
    using FRecords = std::vector<std::unique_ptr<CAudioVizData>>;

    explicit CVizProbe(CAudioVizCollector& collector, std::uint32_t clientId = 1)
        : m_collector(collector), m_clientId(clientId)
    {
    }

    /// The id of the request.
    std::uint32_t listen(const std::string& name, std::int32_t kind = CAudioVizCollector::kOwnInstance);
    /// What has come, by source; the test fails where the message is not well formed.
    std::map<std::string, FRecords> pull(double now = 0.0);
    /// The same of one source, of class T.
    template <class T>
    std::vector<T> pull(const std::string& name)
    {
        std::vector<T> records;
        const FRecords pulled = std::move(pull()[name]);
        for (const auto& record : pulled)
            records.push_back(dynamic_cast<const T&>(*record));
        return records;
    }
    [[nodiscard]] std::vector<std::uint8_t> pullBytes(double now = 0.0);
    [[nodiscard]] double streamTime() const { return m_streamTime; }

private:
    CAudioVizCollector& m_collector;
    std::uint32_t m_clientId;
    std::uint32_t m_counter = 0;
    double m_streamTime = 0.0;
};

} // namespace qrb
