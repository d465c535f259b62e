// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <memory>

namespace qrb {

class CInputStream;
class COutputStream;
enum class EAudioParamType : std::int32_t;

/// A value that is no number: text or bytes. Owned by the item table of a storage or record.
class CAudioParamDataItem : public CCheckedObject {
public:
    [[nodiscard]] virtual std::unique_ptr<CAudioParamDataItem> clone() const = 0;
    virtual CErrorPtr save(COutputStream& out) const = 0;
    virtual CErrorPtr load(CInputStream& in) = 0;
    [[nodiscard]] virtual EAudioParamType getType() const = 0;

    /// An empty item of a type; null for numbers, which have none.
    [[nodiscard]] static std::unique_ptr<CAudioParamDataItem> make(EAudioParamType type);
};

} // namespace qrb
