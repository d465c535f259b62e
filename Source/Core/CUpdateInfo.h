// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

class CString;

/// What a notification tells.
struct CUpdateInfo {
    const void* sender = nullptr; ///< who changed it, only compared; receivers leave their own changes out
    std::uint64_t key = 0;        ///< what changed
};

/// What a listener says it wants to hear about: a number or a name, as its notifier understands it.
struct CUpdateKeyArg {
    CUpdateKeyArg() = default;
    CUpdateKeyArg(std::uint64_t keyNumber) : number(keyNumber) {}
    CUpdateKeyArg(const CString& keyName) : name(&keyName) {}

    std::uint64_t number = 0;
    const CString* name = nullptr; ///< not owned; read during the call only
};

} // namespace qrb
