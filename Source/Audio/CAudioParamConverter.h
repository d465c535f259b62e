// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

namespace qrb {

class CAudioParamData;
class CAudioParamInfo;

/// How a value is written out.
enum class EValueStyle {
    normal,    ///< with the decimals of the quantity
    compact,   ///< for narrow read-outs
    shortName, ///< short state names where a quantity has names
    exact      ///< more digits, for a text that is edited and read back
};

/// Relates stored values of one kind of quantity to normalised positions from 0 to 1 and to text.
///
/// A shared, declared object: one serves many parameters, and takes the bounds of component `c` from the parameter's
/// info with each call. Stored values are in the unit that modules want (linear gain, seconds, a slope).
/// Thread: any, once the shared tree is built; nothing here changes state.
class CAudioParamConverter : public CObject {
public:
    CErrorPtr init() override;

    /// Text typed by a user, or a declared default, to a stored value within the bounds. A text that cannot be read
    /// gives the lower bound and `*outOk` false; `outOk` may be null.
    virtual double parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const = 0;

    /// The same without limits, for the declaration of the bounds themselves: reads no bound from `info`.
    /// A text that cannot be read gives the quantity's neutral value and `*outOk` false; `outOk` may be null.
    virtual double parseBound(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const = 0;

    /// Stored value to text, without the unit. `data` is where keys of text values resolve; null reads as empty.
    virtual void formatValue(CString& out, const CAudioParamInfo& info, int c, double value,
                             const CAudioParamData* data, EValueStyle style) const = 0;

    /// Normalised position to stored value.
    [[nodiscard]] virtual double fromNormal(const CAudioParamInfo& info, int c, double n) const = 0;

    /// Stored value to normalised position.
    [[nodiscard]] virtual double toNormal(const CAudioParamInfo& info, int c, double value) const = 0;

    /// Normalised position to the number in the displayed unit.
    [[nodiscard]] virtual double toDisplay(const CAudioParamInfo& info, int c, double n) const = 0;

    /// Whether a control snaps to whole steps.
    [[nodiscard]] bool isDiscrete() const { return m_isDiscrete; }

    /// The unit that an editor puts behind the text.
    [[nodiscard]] const CString& label() const { return m_label; }

private:
    CString m_label;
    bool m_isDiscrete = false;
};

} // namespace qrb
