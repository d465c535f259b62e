// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CAudioCCTable.h"

#include "Audio/HostParams/CAudioExtParam.h"
#include "Core/CAppData.h"
#include "Core/CChunkId.h"
#include "Core/CLog.h"
#include "Core/CMemoryReader.h"

#include <utility>

namespace qrb {

static constexpr const char* kBlockName = "ccmap";

void CAudioCCTable::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioCCTable::CAudioCCTable() = default;
CAudioCCTable::~CAudioCCTable() = default;

CErrorPtr CAudioCCTable::init()
{
    QRB_TRY(CObject::init());
    m_listener.attach(CAppData::findScope("local"), CString(kBlockName));
    reload();
    return nullptr;
}

void CAudioCCTable::unlink()
{
    m_listener.detach();
    CObject::unlink();
}

CAudioExtParam* CAudioCCTable::get(std::int32_t controller) const
{
    const platform::CScopedLock guard(m_lock);
    return controller >= 0 && controller < kControllerCount ? m_entries[static_cast<std::size_t>(controller)] : nullptr;
}

void CAudioCCTable::reload()
{
    CAppData* const store = CAppData::findScope("local");
    const platform::CScopedLock guard(m_lock);
    m_entries.fill(nullptr);
    CByteArray bytes = store != nullptr ? store->readData(kBlockName, chunkId("adat")) : CByteArray();
    if (bytes.empty())
        return;
    CMemoryReader in(std::move(bytes));
    if (const CErrorPtr error = readEntries(in))
        logError(error);
}

CErrorPtr CAudioCCTable::readEntries(CInputStream& in)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    for (std::int32_t i = 0; i < count; ++i) {
        std::int32_t controller = 0;
        QRB_TRY(in.readInt32(controller));
        CString path;
        QRB_TRY(in.readString(path));
        if (controller >= 0 && controller < kControllerCount)
            m_entries[static_cast<std::size_t>(controller)] = dynamic_cast<CAudioExtParam*>(findObject(path));
    }
    return nullptr;
}

} // namespace qrb
