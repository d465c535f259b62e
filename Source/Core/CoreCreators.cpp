// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CoreCreators.h"

#include "Core/CAttrDoubler.h"
#include "Core/CObject.h"
#include "Core/CSharedAttribute.h"
#include "Core/CStdEventBridge.h"
#include "Core/CTimer.h"

namespace qrb {

namespace {

constexpr CCreatorRow kRows[] = {
    creatorRow<CAttrDoubler>("core:attr-doubler"),         creatorRow<CObject>("core:object"),
    creatorRow<CSharedAttribute>("core:shared-attribute"), creatorRow<CTimer>("core:timer"),
    creatorRow<CStdEventBridge>("ui:ui-event-bridge"),
};

} // namespace

std::span<const CCreatorRow> coreCreators()
{
    return kRows;
}

} // namespace qrb
