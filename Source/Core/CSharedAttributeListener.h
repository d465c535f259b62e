// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAppDataListener.h"

namespace qrb {

class CSharedAttribute;

/// Has the owner's thread run the owner's "update" after a change; without a bridge above the owner nothing happens.
class CSharedAttributeListener final : public CAppDataListener<CSharedAttribute> {
public:
    using CAppDataListener::CAppDataListener;
    ~CSharedAttributeListener() override;

    void onUpdate(const CUpdateInfo& info) override;
};

} // namespace qrb
