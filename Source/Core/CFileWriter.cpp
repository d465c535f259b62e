// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CFileWriter.h"

#include "Core/CPathText.h"

namespace qrb {

CErrorPtr CFileWriter::open(const CString& name, bool append)
{
    QRB_TRY(close());
    int error = 0;
    if (name == "-" || name == "-e") {
        const bool isOutput = name == "-";
        m_name = isOutput ? "stdout" : "stderr";
        error = m_file.openStandard(isOutput ? platform::EStandardStream::output : platform::EStandardStream::error);
    } else {
        m_name = name;
        error = m_file.open(pathToBytes(name), append ? platform::EFileMode::append : platform::EFileMode::rewrite);
    }
    if (error != 0)
        return QRB_ERROR("@qrbstr_CFileWriter_open_OpenError Unable to open file '%1' for %2 (error %3).", m_name,
                         append ? "appending" : "rewriting", error);
    return nullptr;
}

CErrorPtr CFileWriter::write(const void* buffer, std::size_t count)
{
    std::size_t written = 0;
    if (const int error = m_file.write(buffer, count, written); error != 0 && written == 0)
        return QRB_ERROR("@qrbstr_CFileWriter_write_WriteError Unable to write to file '%1' (error %2).", m_name,
                         error);
    if (written < count)
        return QRB_ERROR("@qrbstr_CFileWriter_write_WriteErrorCount "
                         "Unable to write to file '%1' (required %2 bytes, written %3 bytes).",
                         m_name, count, written);
    return nullptr;
}

} // namespace qrb
