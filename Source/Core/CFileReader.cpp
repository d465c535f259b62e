// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CFileReader.h"

#include "Core/CPathText.h"

#include <cerrno>

namespace qrb {

CErrorPtr CFileReader::open(const CString& name, bool forWriting)
{
    QRB_TRY(close());
    const bool isStandard = name == "-";
    m_name = isStandard ? CString("stdin") : name;
    const auto mode = forWriting ? platform::EFileMode::update : platform::EFileMode::read;
    const int error =
        isStandard ? m_file.openStandard(platform::EStandardStream::input) : m_file.open(pathToBytes(name), mode);
    if (error != 0)
        return QRB_ERROR("@qrbstr_CFileReader_open_OpenError Unable to open file '%1' for reading (error %2).", m_name,
                         error);
    return nullptr;
}

CErrorPtr CFileReader::skip(std::uint64_t count)
{
    std::uint64_t position = 0;
    if (m_file.position(position) != 0)
        return CInputStream::skip(count); // a pipe has no position
    std::uint64_t size = 0;
    int error = m_file.size(size);
    if (error == 0)
        error = position > size || count > size - position ? EINVAL : m_file.seek(position + count);
    if (error != 0)
        return QRB_ERROR("@qrbstr_CFileReader_skip_PosError "
                         "Unable to increment file's '%1' position by %2 (error %3).",
                         m_name, count, error);
    return nullptr;
}

CErrorPtr CFileReader::read(void* buffer, std::size_t count)
{
    std::size_t available = 0;
    if (const int error = m_file.read(buffer, count, available); error != 0)
        return QRB_ERROR("@qrbstr_CFileReader_read_ReadError Unable to read from file '%1' (error %2).", m_name, error);
    if (available < count)
        return QRB_ERROR("@qrbstr_CFileReader_read_ReadBeyondEnd "
                         "Unable to read from file '%1' (required %2 bytes, read %3 bytes).",
                         m_name, count, available);
    return nullptr;
}

CErrorPtr CFileReader::readAvailable(void* buffer, std::size_t& count)
{
    const std::size_t wanted = count;
    if (const int error = m_file.read(buffer, wanted, count); error != 0)
        return QRB_ERROR("@qrbstr_CFileReader_readStreamed_ReadError Unable to read from file '%1' (error %2).", m_name,
                         error);
    return nullptr;
}

} // namespace qrb
