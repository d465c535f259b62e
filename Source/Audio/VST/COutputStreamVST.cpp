// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/COutputStreamVST.h"

#include <pluginterfaces/base/ibstream.h>

#include <algorithm>
#include <cstring>

namespace qrb {

CErrorPtr COutputStreamVST::write(const void* buffer, std::size_t count)
{
    std::uint8_t block[4096]; // the host takes memory that it may change
    const std::uint8_t* const bytes = static_cast<const std::uint8_t*>(buffer);
    for (std::size_t done = 0; done < count;) {
        const std::size_t wanted = std::min(count - done, sizeof block);
        std::memcpy(block, bytes + done, wanted);
        Steinberg::int32 put = 0;
        const Steinberg::tresult result = m_stream.write(block, static_cast<Steinberg::int32>(wanted), &put);
        if (result != Steinberg::kResultOk || put <= 0 || static_cast<std::size_t>(put) > wanted)
            return QRB_ERROR("@qrbstr_COutputStreamVST_write_Error The host does not take the data.");
        done += static_cast<std::size_t>(put);
    }
    return nullptr;
}

} // namespace qrb
