// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextReaderLine.h"

namespace qrb {

CErrorPtr CTextReaderLine::open(const CString& fileName)
{
    m_lines.reset();
    QRB_TRY(m_file.open(fileName));
    m_lines.emplace(m_file);
    return nullptr;
}

CErrorPtr CTextReaderLine::close()
{
    m_lines.reset();
    return m_file.close();
}

CErrorPtr CTextReaderLine::readLine(CString& line, bool& hasLine)
{
    if (m_lines)
        return m_lines->readLine(line, hasLine);
    line.clear();
    hasLine = false;
    return nullptr;
}

} // namespace qrb
