// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/CCompileSession.h"

namespace qrbdoc {

/// Refuses objects whose tag is the name of a run-time template: the loader would make an inert object of them. Warns
/// of tags and attributes that Options::knownTags does not list.
void checkDocument(CCompileSession& session, const DocumentNode& root);

/// Splits "source|resource", or one text for both. Returns what is wrong, empty on success.
[[nodiscard]] std::string splitPackedFile(const std::string& text, PackedFile& out);

/// The data files that objects named "appdata" ask for, in the order of the document.
[[nodiscard]] std::vector<PackedFile> collectPackedFiles(CCompileSession& session, const DocumentNode& root);

} // namespace qrbdoc
