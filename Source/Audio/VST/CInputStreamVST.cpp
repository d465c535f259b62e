// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CInputStreamVST.h"

#include <pluginterfaces/base/ibstream.h>

#include <algorithm>

namespace qrb {

CErrorPtr CInputStreamVST::read(void* buffer, std::size_t count)
{
    std::size_t available = count;
    QRB_TRY(readAvailable(buffer, available));
    if (available != count)
        return QRB_ERROR("@qrbstr_CInputStreamVST_read_Error Unexpected end of the host's data.");
    return nullptr;
}

CErrorPtr CInputStreamVST::readAvailable(void* buffer, std::size_t& count)
{
    constexpr std::size_t kLargest = 1 << 20;
    std::uint8_t* const bytes = static_cast<std::uint8_t*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const Steinberg::int32 wanted = static_cast<Steinberg::int32>(std::min(count - done, kLargest));
        Steinberg::int32 got = 0;
        // Hosts tell the end as failure or as no bytes; how many came is what counts.
        const Steinberg::tresult result = m_stream.read(bytes + done, wanted, &got);
        if (got <= 0 || got > wanted)
            break;
        done += static_cast<std::size_t>(got);
        if (result != Steinberg::kResultOk)
            break;
    }
    count = done;
    return nullptr;
}

} // namespace qrb
