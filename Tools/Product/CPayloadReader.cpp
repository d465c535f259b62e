// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Product/CPayloadReader.h"

#include "Core/CInputStream.h"

namespace product {

std::int32_t CPayloadReader::readInt()
{
    const std::string bytes = take(4, "a number");
    std::uint32_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = (value << 8) | static_cast<unsigned char>(bytes[i]);
    return static_cast<std::int32_t>(value);
}

std::string CPayloadReader::readText()
{
    const std::int32_t count = readInt();
    if (isGood() && static_cast<std::uint32_t>(count) > qrb::kMaxStreamStringBytes)
        fail("a text of " + std::to_string(static_cast<std::uint32_t>(count)) + " bytes is too long");
    return take(count, "a text");
}

std::string CPayloadReader::readBlock()
{
    return take(readInt(), "a parameter");
}

void CPayloadReader::fail(const std::string& what)
{
    if (m_error.empty())
        m_error = what + " (at byte " + std::to_string(m_at) + " of the content)";
}

std::string CPayloadReader::take(std::int64_t count, const char* what)
{
    if (!isGood())
        return {};
    if (count < 0 || static_cast<std::uint64_t>(count) > rest().size()) {
        fail(std::string("it ends within ") + what);
        return {};
    }
    std::string taken(rest().substr(0, static_cast<std::size_t>(count)));
    m_at += taken.size();
    return taken;
}

void appendInt(std::string& out, std::int32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        out += static_cast<char>(static_cast<std::uint32_t>(value) >> shift & 0xFFu);
}

void appendBlock(std::string& out, std::string_view bytes)
{
    appendInt(out, static_cast<std::int32_t>(bytes.size()));
    out += bytes;
}

} // namespace product
