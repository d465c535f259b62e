// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CSharedAttributeListener.h"

#include "Core/CObjectEventBridge.h"
#include "Core/CSharedAttribute.h"

namespace qrb {

CSharedAttributeListener::~CSharedAttributeListener()
{
    detach();
}

void CSharedAttributeListener::onUpdate(const CUpdateInfo&)
{
    const CSharedAttribute& object = owner();
    const CObject* const threadOwner = object.threadOwner();
    CObjectEventBridge* const bridge = threadOwner != nullptr ? threadOwner->eventBridge() : nullptr;
    if (bridge == nullptr)
        return;
    CEventArgs args;
    args.set("sender", object.fullName());
    args.set("event-name", "update");
    args.set("listener", object.fullName());
    args.set("listener-id", object.objectId());
    args.set("listener-proc", "update");
    logError(bridge->post(args));
}

} // namespace qrb
