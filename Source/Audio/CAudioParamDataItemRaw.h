// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamDataItem.h"
#include "Core/CArray.h"

#include <span>

namespace qrb {

/// A block of bytes.
class CAudioParamDataItemRaw : public CAudioParamDataItem {
public:
    CAudioParamDataItemRaw() = default;
    explicit CAudioParamDataItemRaw(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return m_bytes.span(); }

    [[nodiscard]] std::unique_ptr<CAudioParamDataItem> clone() const override;
    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;
    [[nodiscard]] EAudioParamType getType() const override;

private:
    CByteArray m_bytes;
};

} // namespace qrb
