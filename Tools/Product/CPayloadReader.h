// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace product {

/// Walks the integers and counted byte strings of a payload. The first step that fails tells why in error(), and those
/// behind it do nothing.
class CPayloadReader {
public:
    explicit CPayloadReader(std::string_view bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool isGood() const { return m_error.empty(); }
    [[nodiscard]] const std::string& error() const { return m_error; }
    [[nodiscard]] std::string_view rest() const { return m_bytes.substr(m_at); }

    /// 0 behind a failure.
    std::int32_t readInt();
    /// A text with its count, not longer than the system reads.
    std::string readText();
    /// A block with its count.
    std::string readBlock();
    void fail(const std::string& what);

private:
    std::string take(std::int64_t count, const char* what);

    std::string_view m_bytes;
    std::size_t m_at = 0;
    std::string m_error;
};

void appendInt(std::string& out, std::int32_t value);
/// Count and bytes.
void appendBlock(std::string& out, std::string_view bytes);

} // namespace product
