// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/DocumentNode.h"

#include <string_view>
#include <unordered_map>

namespace qrbdoc {

/// Writes a tree of objects in the compiled form, all integers little endian:
///
///     u32 string count N, u32 size S of the string block, N times u32 offset of a string from the block's start,
///     the strings as UTF-8 ended by a NUL (these and the offsets make S bytes), u32 zero, the root node
///
/// An object is a byte 0, a u16 count of attributes, each a pair of u16 string indices (name, value), a u16 count of
/// children, each a pair of string indices (tag, name) followed by the child's node. A stored template is a byte 1, the
/// string index of its class tag, a u32 length and as many bytes: u32 zero and an object node.
class CDocumentWriter {
public:
    explicit CDocumentWriter(CCompileSession& session) : m_session(session) {}

    [[nodiscard]] std::vector<std::uint8_t> write(const DocumentNode& root);

private:
    void writeObject(const DocumentNode& node);
    void writeChild(const DocumentNode& node);
    void writeText(std::string_view text, SourcePlace place);

    CCompileSession& m_session;
    std::vector<std::uint8_t> m_nodes;
    std::unordered_map<std::string_view, std::size_t> m_indices; ///< Views of the tree's own texts.
    std::vector<std::string_view> m_strings;
};

} // namespace qrbdoc
