// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"
#include "Core/CUpdateListener.h"

#include <array>
#include <cstdint>

namespace qrb {

class CAudioParam;
class CAudioParamCollector;
class CAudioVizSlotManager;

/// What an instance exports, read from its parameters: for each group a slot and the name it gets there.
/// Thread: any but the audio thread.
class CAudioVizExport : public CCheckedObject {
public:
    static constexpr std::int32_t kGroupCount = 8;

    /// Paths of parameters: slot numbers plus 1 by element, 0 for none; colours by element; the instance's name; names
    /// of groups by element. An empty path: none.
    struct CPaths {
        CString slots;
        CString colors;
        CString instanceName;
        CString groupNames;
    };

    CAudioVizExport(CAudioParamCollector& params, const CPaths& paths, CAudioVizSlotManager& manager);

    /// -1 for none.
    [[nodiscard]] std::int32_t slotOf(std::int32_t group) const;
    [[nodiscard]] CString nameOf(std::int32_t group) const;

private:
    /// Marks only, since it runs with parameters held.
    class CListener final : public CUpdateListener {
    public:
        ~CListener() override { detach(); }
        void onUpdate(const CUpdateInfo& info) override;
        CAudioVizSlotManager* manager = nullptr;
    };
    enum EParam { kSlots, kColors, kInstanceName, kGroupNames, kParamCount };

    [[nodiscard]] std::int32_t numberAt(EParam param, std::int32_t element) const;
    [[nodiscard]] CString textAt(EParam param, std::int32_t element) const;

    std::array<CAudioParam*, kParamCount> m_params{};
    std::array<CListener, kParamCount> m_listeners;
};

} // namespace qrb
