// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CoreCreators.h"

#include "Core/CObject.h"
#include "Core/CStdEventBridge.h"

namespace qrb {

namespace {

constexpr CCreatorRow kRows[] = {
    creatorRow<CObject>("core:object"),
    creatorRow<CStdEventBridge>("ui:ui-event-bridge"),
};

} // namespace

std::span<const CCreatorRow> coreCreators()
{
    return kRows;
}

} // namespace qrb
