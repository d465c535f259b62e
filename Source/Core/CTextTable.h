// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CString.h"

namespace qrb {

class CInputStream;
class CLineReaderUTF8;
class COutputStream;

/// Table of text: a row a line, fields parted by "," or ";", quoted where needed, comments behind "#".
/// A line break within a field does not survive writing and reading.
class CTextTable : public CCheckedObject {
public:
    using CRow = CArray<CString>;

    [[nodiscard]] const CArray<CRow>& rows() const { return m_rows; }
    void addRow(CRow row) { m_rows.append(std::move(row)); }
    void clear() { m_rows.clear(); }

    /// Replaces the rows; on failure the old ones stand.
    CErrorPtr readFile(const CString& fileName);
    CErrorPtr read(CInputStream& stream);

    CErrorPtr writeFile(const CString& fileName) const;
    CErrorPtr write(COutputStream& stream) const;

    /// Fields of one line; false for a line that is no row (empty, or a comment).
    [[nodiscard]] static bool parseRow(const CString& line, CRow& fields);

private:
    CArray<CRow> m_rows;
};

} // namespace qrb
