// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CLineReaderUTF8.h"

#include "Core/CInputStream.h"
#include "Core/CString.h"
#include "Core/CUtf8.h"

namespace qrb {

namespace {

/// Turns bytes into 16-bit units, keeping a sequence that is not complete yet.
class CUnitCollector {
public:
    void add(std::uint8_t byte)
    {
        if (m_wanted > 0 && (byte & 0xC0) != 0x80)
            m_wanted = 0; // the sequence was cut short
        if (m_wanted == 0) {
            m_wanted = utf8SequenceLength(byte);
            m_have = 0;
            if (m_wanted == 0)
                return;
        }
        m_sequence[m_have++] = byte;
        if (m_have < m_wanted)
            return;
        char32_t character = 0;
        if (utf8Decode(m_sequence, m_wanted, character) && character != 0 && character != U'\r')
            append(character);
        m_wanted = 0;
    }

    [[nodiscard]] CString text() const { return CString::fromUtf16({m_units.data(), m_units.size()}); }

private:
    void append(char32_t character)
    {
        if (character > 0xFFFF) {
            m_units.append(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            character = 0xDC00 + (character & 0x3FF);
        }
        m_units.append(static_cast<char16_t>(character));
    }

    CArray<char16_t, 80> m_units;
    std::uint8_t m_sequence[kMaxUtf8Bytes] = {};
    std::size_t m_have = 0;
    std::size_t m_wanted = 0;
};

} // namespace

CLineReaderUTF8::CLineReaderUTF8(CInputStream& stream) : m_stream(stream) {}

CErrorPtr CLineReaderUTF8::readLine(CString& line, bool& hasLine)
{
    line.clear();
    hasLine = false;
    CUnitCollector units;
    for (;;) {
        std::uint8_t byte = 0;
        bool hasByte = false;
        QRB_TRY(nextByte(byte, hasByte));
        if (!hasByte)
            break;
        hasLine = true;
        if (byte == '\n')
            break;
        units.add(byte);
    }
    line = units.text();
    return nullptr;
}

CErrorPtr CLineReaderUTF8::nextByte(std::uint8_t& byte, bool& hasByte)
{
    if (m_position == m_count) {
        m_buffer.resize(kBufferSize);
        m_position = 0;
        m_count = kBufferSize;
        CErrorPtr error = m_stream.readAvailable(m_buffer.data(), m_count);
        if (error) {
            m_count = 0;
            return std::move(error).traced(__FILE__, __LINE__, fullName());
        }
    }
    hasByte = m_position < m_count;
    if (hasByte)
        byte = m_buffer[m_position++];
    return nullptr;
}

} // namespace qrb
