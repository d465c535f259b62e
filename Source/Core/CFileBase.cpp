// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CFileBase.h"

namespace qrb {

CFileBase::~CFileBase()
{
    logError(close());
}

CErrorPtr CFileBase::close()
{
    if (!m_file.isOpen())
        return nullptr;
    if (const int error = m_file.close(); error != 0)
        return QRB_ERROR("@qrbstr_CFileBase_close_CloseError Unable to close file '%1' (error %2).", m_name, error);
    return nullptr;
}

CErrorPtr CFileBase::getPosition(std::uint64_t& position)
{
    if (const int error = m_file.position(position); error != 0)
        return QRB_ERROR("@qrbstr_CFileBase_getPosition_PosError Unable to get file's '%1' position (error %2).",
                         m_name, error);
    return nullptr;
}

CErrorPtr CFileBase::getSize(std::uint64_t& size)
{
    if (const int error = m_file.size(size); error != 0)
        return QRB_ERROR("@qrbstr_CFileBase_getSize_FileSizeError Unable to get file's '%1' size (error %2).", m_name,
                         error);
    return nullptr;
}

CErrorPtr CFileBase::setPosition(std::uint64_t position)
{
    if (const int error = m_file.seek(position); error != 0)
        return QRB_ERROR("@qrbstr_CFileBase_setPosition_PosError Unable to set file's '%1' position to %2 (error %3).",
                         m_name, position, error);
    return nullptr;
}

} // namespace qrb
