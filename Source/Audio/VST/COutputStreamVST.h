// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/COutputStream.h"

namespace Steinberg {
class IBStream;
}

namespace qrb {

/// Writes to a stream of the host, which outlives it.
class COutputStreamVST final : public COutputStream {
public:
    explicit COutputStreamVST(Steinberg::IBStream& stream) : m_stream(stream) {}

    CErrorPtr write(const void* buffer, std::size_t count) override;

private:
    Steinberg::IBStream& m_stream;
};

} // namespace qrb
