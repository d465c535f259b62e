// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamFormat.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrb {
class CAudioParamInfo;
class CAudioParamStorage;
} // namespace qrb

namespace qrbpreset {

/// A saved parameter as texts: a list of values for each group.
struct CItemText {
    std::string definition; ///< path of the definition, as bytes
    qrb::EAudioParamType type = qrb::EAudioParamType::number;
    std::int32_t elementSize = 1;
    std::vector<std::string> groups;
};

/// Texts of the bytes that a preset holds of a parameter, or nothing if no texts give exactly these bytes again. `info`
/// is the parameter's description, null if the product lacks it.
[[nodiscard]] std::optional<CItemText> printItem(std::string_view bytes, const qrb::CAudioParamInfo* info);

/// The bytes. Nothing on failure, with the reason in `error` and the group that it lies in, if any, in `errorGroup`.
[[nodiscard]] std::optional<std::string> buildItem(const CItemText& item, const qrb::CAudioParamInfo* info,
                                                   std::string& error, std::size_t& errorGroup);

} // namespace qrbpreset
