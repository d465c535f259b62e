// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"

#include <cstdint>

namespace qrb {

/// A message on its way out: the name of an event, then its fields in their order.
class CParamInterfaceMessage {
public:
    explicit CParamInterfaceMessage(const char* event);

    CParamInterfaceMessage& add(std::int32_t value);
    CParamInterfaceMessage& add(std::uint32_t value);
    CParamInterfaceMessage& add(bool value);
    CParamInterfaceMessage& add(double value);
    CParamInterfaceMessage& add(const CString& value);
    CParamInterfaceMessage& add(const char* value) = delete;
    /// For fields that write themselves.
    [[nodiscard]] COutputStream& out() { return m_out; }

    /// The message as one byte string.
    [[nodiscard]] CByteArray bytes() const;

private:
    CWriteSeqBuffer m_out;
};

} // namespace qrb
