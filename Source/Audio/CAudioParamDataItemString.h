// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamDataItem.h"
#include "Core/CString.h"

namespace qrb {

/// A text.
class CAudioParamDataItemString : public CAudioParamDataItem {
public:
    CAudioParamDataItemString() = default;
    explicit CAudioParamDataItemString(const CString& text) : m_text(text) {}

    [[nodiscard]] const CString& text() const { return m_text; }

    [[nodiscard]] std::unique_ptr<CAudioParamDataItem> clone() const override;
    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;
    [[nodiscard]] EAudioParamType getType() const override;

private:
    CString m_text;
};

} // namespace qrb
