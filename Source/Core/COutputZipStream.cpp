// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/COutputZipStream.h"

#include "Core/CZipState.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kMaxPiece = std::size_t{1} << 30; // zlib counts in 32 bits

} // namespace

COutputZipStream::~COutputZipStream()
{
    logError(close());
}

CErrorPtr COutputZipStream::open(COutputStream& parent, int level)
{
    QRB_TRY(close());
    auto state = std::make_unique<CState>();
    const int result = deflateInit(&state->zip, level);
    if (result != Z_OK)
        return QRB_ERROR("@qrbstr_COutputZipStream_open_deflateInit zlib deflateInit error %1 (%2).", result,
                         state->zip.msg);
    state->zip.next_out = state->packed;
    state->zip.avail_out = kBufferSize;
    m_state = std::move(state);
    m_parent = &parent;
    return nullptr;
}

CErrorPtr COutputZipStream::write(const void* buffer, std::size_t count)
{
    if (!m_state)
        return QRB_ERROR("@qrbstr_COutputZipStream_write_NoStream Output stream not specified.");
    z_stream& zip = m_state->zip;
    const auto* source = static_cast<const std::uint8_t*>(buffer);
    while (count > 0) {
        const std::size_t piece = std::min(count, kMaxPiece);
        zip.next_in = const_cast<Bytef*>(source); // zlib reads only
        zip.avail_in = static_cast<uInt>(piece);
        while (zip.avail_in > 0) {
            const int result = deflate(&zip, Z_NO_FLUSH);
            if (result != Z_OK)
                return QRB_ERROR("@qrbstr_COutputZipStream_write_deflate zlib deflate error %1 (%2).", result,
                                 lastMessage());
            if (zip.avail_out == 0)
                QRB_TRY(flushBuffer());
        }
        source += piece;
        count -= piece;
    }
    return nullptr;
}

CErrorPtr COutputZipStream::close()
{
    if (!m_state)
        return nullptr;
    CErrorPtr error = finish();
    const int result = deflateEnd(&m_state->zip);
    const CString message = lastMessage();
    m_state.reset();
    m_parent = nullptr;
    if (error)
        return std::move(error).traced(__FILE__, __LINE__, fullName());
    if (result != Z_OK)
        return QRB_ERROR("@qrbstr_COutputZipStream_close_deflateEnd zlib deflateEnd error %1 (%2).", result, message);
    return nullptr;
}

CErrorPtr COutputZipStream::finish()
{
    z_stream& zip = m_state->zip;
    zip.next_in = nullptr;
    zip.avail_in = 0;
    for (int result = Z_OK; result != Z_STREAM_END;) {
        result = deflate(&zip, Z_FINISH);
        if (result != Z_OK && result != Z_STREAM_END)
            return QRB_ERROR("@qrbstr_COutputZipStream_close_deflate zlib deflate error %1 (%2).", result,
                             lastMessage());
        QRB_TRY(flushBuffer());
    }
    return nullptr;
}

CErrorPtr COutputZipStream::flushBuffer()
{
    z_stream& zip = m_state->zip;
    const std::size_t count = kBufferSize - zip.avail_out;
    zip.next_out = m_state->packed;
    zip.avail_out = kBufferSize;
    QRB_TRY(m_parent->write(m_state->packed, count));
    return nullptr;
}

} // namespace qrb
