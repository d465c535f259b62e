// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/COwnedUpdateListener.h"

namespace qrb {

class CAudioParamRegistry;

/// Keeps the current program's name in step with the parameter that shows it.
class CAudioParamRegistryNameListener : public COwnedUpdateListener<CAudioParamRegistry> {
public:
    using COwnedUpdateListener::COwnedUpdateListener;
    ~CAudioParamRegistryNameListener() override;

    void onUpdate(const CUpdateInfo& info) override;
};

} // namespace qrb
