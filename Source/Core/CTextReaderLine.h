// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CFileReader.h"
#include "Core/CLineReaderUTF8.h"

#include <optional>

namespace qrb {

/// Reads a text file line by line.
class CTextReaderLine : public CCheckedObject {
public:
    /// Closes what was open.
    CErrorPtr open(const CString& fileName);
    CErrorPtr close();
    /// As CLineReaderUTF8::readLine; without an open file there is no line.
    CErrorPtr readLine(CString& line, bool& hasLine);

private:
    CFileReader m_file;
    std::optional<CLineReaderUTF8> m_lines;
};

} // namespace qrb
