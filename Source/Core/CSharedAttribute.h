// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"
#include "Core/CString.h"

#include <memory>

namespace qrb {

class CAppData;
class CSharedAttributeListener;

/// Mirrors a stored setting in an attribute of this object (tag core:shared-attribute): "storage-type" and "data-name"
/// tell the block, "attribute" the attribute, "def-value" what counts while no block exists. Others read it through a
/// live binding; when any instance stores a value, the attribute follows in a later turn of the owner's thread.
class CSharedAttribute : public CObject {
public:
    CSharedAttribute();
    ~CSharedAttribute() override;

    static void declare(CObjectClassInfo& info);

    [[nodiscard]] CErrorPtr init() override;
    void unlink() override;

    /// Sets the attribute to the stored value. Handler of the event "update".
    [[nodiscard]] virtual CErrorPtr load();
    /// Stores a value; the attribute follows through the notification.
    void setValue(const CString& value);

private:
    std::unique_ptr<CSharedAttributeListener> m_listener;
    CAppData* m_storage = nullptr;
    CString m_attribute;
    CString m_dataName;
    CString m_default;
};

} // namespace qrb
