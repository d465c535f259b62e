// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CInputZipStream.h"

#include "Core/CZipState.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kMaxPiece = std::size_t{1} << 30; // zlib counts in 32 bits

} // namespace

CInputZipStream::~CInputZipStream()
{
    logError(close());
}

CErrorPtr CInputZipStream::open(CInputStream& parent)
{
    QRB_TRY(close());
    auto state = std::make_unique<CState>();
    const int result = inflateInit(&state->zip);
    if (result != Z_OK)
        return QRB_ERROR("@qrbstr_CInputZipStream_open_inflateInit zlib inflateInit error %1 (%2).", result,
                         state->zip.msg);
    m_state = std::move(state);
    m_parent = &parent;
    return nullptr;
}

CErrorPtr CInputZipStream::close()
{
    if (!m_state)
        return nullptr;
    const int result = inflateEnd(&m_state->zip);
    const CString message = lastMessage();
    m_state.reset();
    m_parent = nullptr;
    if (result != Z_OK)
        return QRB_ERROR("@qrbstr_CInputZipStream_close_inflateEnd zlib inflateEnd error %1 (%2).", result, message);
    return nullptr;
}

CErrorPtr CInputZipStream::read(void* buffer, std::size_t count)
{
    std::size_t available = count;
    QRB_TRY(readAvailable(buffer, available));
    if (available < count)
        return QRB_ERROR("@qrbstr_CInputZipStream_read_EOF Premature end of file.");
    return nullptr;
}

CErrorPtr CInputZipStream::readAvailable(void* buffer, std::size_t& count)
{
    const std::size_t wanted = count;
    count = 0;
    if (!m_state)
        return QRB_ERROR("@qrbstr_CInputZipStream_read_NoStream Input stream not specified.");
    while (count < wanted) {
        std::size_t piece = std::min(wanted - count, kMaxPiece);
        const std::size_t asked = piece;
        QRB_TRY(inflateInto(static_cast<std::uint8_t*>(buffer) + count, piece));
        count += piece;
        if (piece < asked)
            break;
    }
    return nullptr;
}

CErrorPtr CInputZipStream::requireEnd()
{
    if (!m_state)
        return QRB_ERROR("@qrbstr_CInputZipStream_read_NoStream Input stream not specified.");
    std::uint8_t surplus = 0;
    std::size_t count = 1;
    QRB_TRY(inflateInto(&surplus, count));
    if (count != 0)
        return QRB_ERROR("@qrbstr_CInputZipStream_requireEnd_MoreData Packed data goes on beyond its end.");
    if (!m_state->isAtEnd)
        return QRB_ERROR("@qrbstr_CInputZipStream_read_EOF Premature end of file.");
    return nullptr;
}

CErrorPtr CInputZipStream::inflateInto(void* buffer, std::size_t& count)
{
    z_stream& zip = m_state->zip;
    zip.next_out = static_cast<Bytef*>(buffer);
    zip.avail_out = static_cast<uInt>(count);
    const std::size_t wanted = count;
    count = 0;
    while (zip.avail_out > 0 && !m_state->isAtEnd) {
        if (zip.avail_in == 0) {
            std::size_t packedCount = kBufferSize;
            QRB_TRY(m_parent->readAvailable(m_state->packed, packedCount));
            if (packedCount == 0)
                break;
            zip.next_in = m_state->packed;
            zip.avail_in = static_cast<uInt>(packedCount);
        }
        const int result = inflate(&zip, Z_SYNC_FLUSH);
        if (result == Z_STREAM_END)
            m_state->isAtEnd = true;
        else if (result != Z_OK && result != Z_BUF_ERROR)
            return QRB_ERROR("@qrbstr_CInputZipStream_read_inflate zlib inflate error %1 (%2).", result, lastMessage());
    }
    count = wanted - zip.avail_out;
    return nullptr;
}

} // namespace qrb
