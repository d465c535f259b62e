// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CStdEventBridge.h"

namespace qrb {

void CStdEventBridge::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CStdEventBridge::handlePostedEvent(const CEventArgs& args)
{
    const CString name = args.getString("listener");
    CObject* const listener = name.empty() ? &root() : findObject(name); // a root has no name
    if (listener == nullptr || listener->objectId() != args.getInt("listener-id", -1))
        return {};
    return listener->runEvent(args.getString("listener-proc"), args);
}

} // namespace qrb
