// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>
#include <span>

namespace qrb {

class CAudioPreset;
class CAudioPresetBank;
class CString;

/// Follows a registry through an interface client. All calls come on the client's thread.
class CParamInterfaceRegistryListener : public CCheckedObject {
public:
    /// The wish to listen has been sent.
    virtual CErrorPtr onConnected() = 0;
    /// Whole names of the built-in presets or of the session's programs, and the current one of those; -1 for none.
    virtual CErrorPtr onRegistryUpdate(bool isFactory, const CString& registryId, std::span<const CString> names,
                                       std::int32_t currentIndex) = 0;
    /// Answers to requests, with the tag of the request.
    virtual CErrorPtr onPresetData(std::int32_t tag, const CAudioPreset& preset) = 0;
    virtual CErrorPtr onBankData(std::int32_t tag, const CAudioPresetBank& bank) = 0;
};

} // namespace qrb
