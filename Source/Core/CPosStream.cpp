// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CPosStream.h"

#include <limits>

namespace qrb {

namespace {

constexpr std::uint64_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();

} // namespace

CErrorPtr CPosStream::getPositionInt32(std::int32_t& position)
{
    std::uint64_t wide = 0;
    position = 0;
    QRB_TRY(getPosition(wide));
    if (wide > kMaxInt32)
        return QRB_ERROR("@qrbstr_CPosStream_getPositionInt32_Greater2GB "
                         "The size of the stream is above allowed 2 GB.");
    position = static_cast<std::int32_t>(wide);
    return nullptr;
}

CErrorPtr CPosStream::getSizeInt(std::int32_t& size)
{
    std::uint64_t wide = 0;
    size = 0;
    QRB_TRY(getSize(wide));
    if (wide > kMaxInt32)
        return QRB_ERROR("@qrbstr_CPosStream_getSizeInt_Greater2GB The size of the stream is above allowed 2 GB.");
    size = static_cast<std::int32_t>(wide);
    return nullptr;
}

} // namespace qrb
