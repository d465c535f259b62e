// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAppDataListener.h"
#include "Core/CObject.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <cstdint>

namespace qrb {

class CAudioExtParam;
class CInputStream;

/// Which host parameter each MIDI controller moves (tag audio:cctable). The user's table lies in the block "ccmap" of the
/// product's application data: a count, then for each entry the controller's number and the full path of the parameter,
/// both as in presets. Thread: any.
class CAudioCCTable : public CObject {
public:
    static constexpr std::int32_t kControllerCount = 128;

    static void declare(CObjectClassInfo& info);

    CAudioCCTable();
    ~CAudioCCTable() override;

    CErrorPtr init() override;
    void unlink() override;

    /// Null for a controller that moves nothing.
    [[nodiscard]] CAudioExtParam* get(std::int32_t controller) const;
    /// Reads the block again. What of it can be read counts; a path that leads nowhere leaves its entry empty.
    void reload();

private:
    class CDataListener : public CAppDataListener<CAudioCCTable> {
    public:
        using CAppDataListener<CAudioCCTable>::CAppDataListener;
        ~CDataListener() override { detach(); }
        void onUpdate(const CUpdateInfo&) override { owner().reload(); }
    };

    CErrorPtr readEntries(CInputStream& in);

    mutable platform::CRecursiveLock m_lock{4000};
    std::array<CAudioExtParam*, kControllerCount> m_entries{};
    CDataListener m_listener{*this};
};

} // namespace qrb
