// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/DocumentNode.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qrbdoc {

/// Reads a compiled document back into a tree of objects. Every count, offset and length is checked against the bytes
/// there are; the first fault ends the reading.
class CCompiledReader {
public:
    explicit CCompiledReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    /// What is wrong, empty on success. The root of `out` has no tag.
    [[nodiscard]] std::string read(DocumentNode& out);

private:
    void readStrings();
    void readObject(DocumentNode& node, int depth);
    void readChild(DocumentNode& node, int depth);
    void readKind(bool& isTemplate);
    std::size_t number(int bytes);
    std::string text();
    void fail(const std::string& message);

    std::span<const std::uint8_t> m_bytes;
    std::size_t m_at = 0;
    std::vector<std::string_view> m_strings;
    std::string m_error;
};

} // namespace qrbdoc
