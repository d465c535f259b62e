// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioRoutingInfoProvider.h"
#include "Core/CArray.h"
#include "Core/CString.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CAudioParam;
class CAudioParamCollector;
class CAudioParamUndoEntry;
struct CPluginProject;

/// Keeps an instance's routing in step with the channels of the host, as long as the user has left it in the form that is
/// written here, and takes the host's channel labels over on request. Thread: any; the parameters are locked first, what
/// is kept here second.
class CDefaultRouting final : public CAudioRoutingInfoProvider {
public:
    /// Finds the routing parameters; without this call, or in a product without routing, nothing ever happens.
    void init(CAudioParamCollector& collector, const CPluginProject& project);

    /// What the host calls its input channels, main and side-chain; either may be empty.
    void setLabels(const CArray<CString>& inputs, const CArray<CString>& sidechain);
    /// A layout has been reported: from now on the routing follows.
    void allow();
    /// Writes the routing that fits the labels, if the present one is such a routing too and a layout was reported.
    void applyDefaultRouting(const CAudioParamRoute& route) override;
    /// Writes the labels into the channel names. Null, with nothing changed, if they are there already; else the step for
    /// the history.
    [[nodiscard]] std::unique_ptr<CAudioParamUndoEntry> importLabels();

private:
    struct CRoutingParams {
        CAudioParam* inChannelNames = nullptr;
        CAudioParam* groupNames = nullptr;
        CAudioParam* inRouting = nullptr;
        CAudioParam* grouping = nullptr;
        CAudioParam* outRouting = nullptr;
        CAudioParam* pairs = nullptr;         ///< null: no mid/side
        CAudioParam* sidechain = nullptr;     ///< null: no side-chain
        CAudioParam* sidechainMute = nullptr; ///< as sidechain
    };
    /// Which internal channels are keys only, from `first` to before `end`.
    struct CKeyChannels {
        std::int32_t first = 0;
        std::int32_t end = 0;

        [[nodiscard]] std::int32_t count() const { return end - first; }
        [[nodiscard]] bool contains(std::int32_t channel) const { return channel >= first && channel < end; }
        /// Where a channel takes its key from.
        [[nodiscard]] std::int32_t sourceOf(std::int32_t channel) const;
    };

    [[nodiscard]] bool areLive() const;
    [[nodiscard]] bool isUntouched() const;
    [[nodiscard]] bool areGroupNamesUntouched() const;
    [[nodiscard]] bool findKeyChannels(CKeyChannels& out) const;
    [[nodiscard]] bool areChannelNamesUntouched() const;
    void writeNames(const CAudioParamRoute& route) const;
    void writeChannels(const CAudioParamRoute& route) const;
    [[nodiscard]] std::int32_t inputCount() const { return static_cast<std::int32_t>(m_inputLabels.size()); }
    [[nodiscard]] std::int32_t labelCount() const
    {
        return inputCount() + static_cast<std::int32_t>(m_sidechainLabels.size());
    }

    CAudioParamCollector* m_collector = nullptr; ///< null: no routing
    CRoutingParams m_params;
    std::int32_t m_channelCount = 0;

    platform::CRecursiveLock m_lock{4000}; ///< guards what follows
    bool m_isAllowed = false;
    bool m_areLabelsSet = false;
    CArray<CString> m_inputLabels;
    CArray<CString> m_sidechainLabels;
    CArray<CString> m_seenLabels; ///< every label so far, each once
};

} // namespace qrb
