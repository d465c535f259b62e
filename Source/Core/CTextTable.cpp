// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextTable.h"

#include "Core/CFileWriter.h"
#include "Core/CTextReaderLine.h"

#include <algorithm>
#include <string>

namespace qrb {

namespace {

bool needsQuotes(const CString& field)
{
    return field.contains(u',') || field.contains(u';') || field.contains(u'#') || field.contains(u'"');
}

void appendField(std::string& line, const CString& field)
{
    if (!needsQuotes(field)) {
        line += field.toUtf8();
        return;
    }
    line += '"';
    for (const char unit : field.toUtf8()) {
        line += unit;
        if (unit == '"')
            line += unit;
    }
    line += '"';
}

/// Rows of all lines that a reader of either kind gives.
template <typename Reader>
CErrorPtr readRows(Reader& reader, CArray<CTextTable::CRow>& rows)
{
    for (;;) {
        CString line;
        bool hasLine = false;
        QRB_TRY(reader.readLine(line, hasLine));
        if (!hasLine)
            return nullptr;
        CTextTable::CRow fields;
        if (CTextTable::parseRow(line, fields))
            rows.append(std::move(fields));
    }
}

} // namespace

bool CTextTable::parseRow(const CString& line, CRow& fields)
{
    fields.clear();
    if (line.empty() || line.at(0) == u'#')
        return false;
    CArray<char16_t, 80> field;
    const auto endField = [&] {
        fields.append(CString::fromUtf16({field.data(), field.size()}));
        field.clear();
    };
    bool isQuoted = false;
    for (std::size_t i = 0; i < line.length(); ++i) {
        const char16_t unit = line.at(i);
        if (unit == u'"') {
            // Directly behind a closing quote another one means the character, and quoting goes on.
            if (isQuoted && i + 1 < line.length() && line.at(i + 1) == u'"')
                field.append(line.at(++i));
            else
                isQuoted = !isQuoted;
        } else if (!isQuoted && (unit == u',' || unit == u';')) {
            endField();
        } else if (!isQuoted && unit == u'#') {
            break;
        } else {
            field.append(unit);
        }
    }
    endField();
    return true;
}

CErrorPtr CTextTable::readFile(const CString& fileName)
{
    CTextReaderLine reader;
    QRB_TRY(reader.open(fileName));
    CArray<CRow> rows;
    QRB_TRY(readRows(reader, rows));
    QRB_TRY(reader.close());
    m_rows = std::move(rows);
    return nullptr;
}

CErrorPtr CTextTable::read(CInputStream& stream)
{
    CLineReaderUTF8 reader(stream);
    CArray<CRow> rows;
    QRB_TRY(readRows(reader, rows));
    m_rows = std::move(rows);
    return nullptr;
}

CErrorPtr CTextTable::writeFile(const CString& fileName) const
{
    CFileWriter file;
    QRB_TRY(file.open(fileName));
    QRB_TRY(write(file));
    return file.close();
}

CErrorPtr CTextTable::write(COutputStream& stream) const
{
    for (const CRow& row : m_rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i > 0)
                line += ',';
            appendField(line, row[i]);
        }
        line += "\r\n";
        QRB_TRY(stream.write(line.data(), line.size()));
    }
    return nullptr;
}

} // namespace qrb
