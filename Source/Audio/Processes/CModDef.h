// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessDefBase.h"

#include <memory>

namespace qrb {

/// Definition that makes nodes of class T.
template <class T>
class CModDef : public CAudioProcessDefBase {
public:
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> createProcess() const override { return std::make_unique<T>(); }
};

} // namespace qrb
