// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstddef>

namespace qrb {

class CInputStream;
class COutputStream;
struct CAudioPresetBudget;

/// A named set of saved parameters. The name is "<id of the registry>:<name that users see>"; the key of an item is the
/// parameter's path below the registry's hierarchy, its value what CAudioParam::save() writes.
class CAudioPreset : public CCheckedObject {
public:
    static constexpr char16_t kIdSeparator = u':';

    /// The whole name from its two parts.
    [[nodiscard]] static CString joinName(const CString& registryId, const CString& visibleName);
    /// The part in front of the first ":"; empty without one.
    [[nodiscard]] CString registryId() const;
    /// The part behind the first ":"; all of it without one.
    [[nodiscard]] CString visibleName() const;

    /// Name, count, and for each item in the order of keys: key, byte count, bytes.
    CErrorPtr save(COutputStream& out) const;
    /// Reads what save() wrote; of items with one key the last counts. Stays as it was on failure.
    CErrorPtr load(CInputStream& in);
    CErrorPtr load(CInputStream& in, CAudioPresetBudget& budget);

    CString name;
    CMap<CString, CByteArray> items;
};

} // namespace qrb
