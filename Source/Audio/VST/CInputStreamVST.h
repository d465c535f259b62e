// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CInputStream.h"

namespace Steinberg {
class IBStream;
}

namespace qrb {

/// Reads from a stream of the host, which outlives it.
class CInputStreamVST final : public CInputStream {
public:
    explicit CInputStreamVST(Steinberg::IBStream& stream) : m_stream(stream) {}

    CErrorPtr read(void* buffer, std::size_t count) override;
    CErrorPtr readAvailable(void* buffer, std::size_t& count) override;

private:
    Steinberg::IBStream& m_stream;
};

} // namespace qrb
