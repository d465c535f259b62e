// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace qrbdoc {

class CSourceFile;

/// A place in a source text, cheap enough to keep with every node; turned into line and column when reported.
struct SourcePlace {
    const CSourceFile* file = nullptr;
    std::size_t offset = 0;
};

/// An object of the document with all authoring tags resolved.
struct DocumentNode {
    std::string tag; ///< For a stored template the tag of its instances.
    std::string name;
    bool isTemplate = false;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<DocumentNode> children;
    SourcePlace place;
};

/// Tag under which stored templates stand in their parent's list of children.
inline constexpr const char* kTemplateTag = "template";
/// Counts of attributes, children and strings are 16-bit numbers in the compiled form.
inline constexpr std::size_t kMaxCount = 65535;
inline constexpr std::size_t kMaxStrings = 65536;
/// Depth of the tree that compiler, printer and loader walk recursively.
inline constexpr int kMaxDepth = 200;

} // namespace qrbdoc
