// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <string>
#include <utility>
#include <vector>

namespace qrb {
class CAudioParamInfo;
class CAudioParamRegistry;
class CObject;
} // namespace qrb

namespace qrbpreset {

/// One owner of presets, as the product declares it.
struct CRegistry {
    std::string id;
    std::string naming;
    qrb::CString hierarchy;                                    ///< with "." at its end
    std::vector<std::pair<qrb::CString, qrb::CString>> remaps; ///< from instance paths to those of definitions
    bool isEnumerated = false;
    bool isGlobalStorable = false;
};

/// What the product declares of presets: their owners, and the parameters of each. The module is entered meanwhile.
class CProductParams {
public:
    struct CMember {
        std::string key; ///< path below the owner's hierarchy
        const qrb::CAudioParamInfo* info;
    };

    /// False with one line in `error`.
    [[nodiscard]] bool load(std::string& error);

    [[nodiscard]] const std::vector<CRegistry>& registries() const { return m_registries; }
    /// The owner of presets whose name begins with `id`; null if the product has none.
    [[nodiscard]] const CRegistry* registry(const std::string& id) const;
    /// The parameter of a key; null if the product has none. The registry may be null.
    [[nodiscard]] const qrb::CAudioParamInfo* find(const CRegistry* registry, const std::string& key) const;
    /// Whether loading a preset looks at that parameter.
    [[nodiscard]] bool isContent(const CRegistry& registry, const std::string& key,
                                 const qrb::CAudioParamInfo& info) const;
    /// All parameters that loading looks at.
    [[nodiscard]] std::vector<CMember> members(const CRegistry& registry) const;

private:
    void add(const qrb::CAudioParamRegistry& registry);
    void collect(const qrb::CObject& object, const CRegistry& registry, const qrb::CString& declaredRoot,
                 std::vector<CMember>& out) const;

    std::vector<CRegistry> m_registries;
};

} // namespace qrbpreset
