// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/DocCompiler.h"
#include "Tools/Product/CPresetFile.h"

#include <optional>
#include <string>
#include <vector>

namespace qrbpreset {

class CProductParams;

/// The text form of a file of presets: XML with the values as users read them. Building it gives an equal file.
[[nodiscard]] std::string printText(const product::CPresetFile& file, const CProductParams& params);

/// What building a text came to: a file, or errors.
struct CBuilt {
    std::optional<product::CPresetFile> file;
    std::vector<qrbdoc::Diagnostic> errors;
    std::vector<qrbdoc::Diagnostic> warnings; ///< what loading the file will pass over
};

/// Builds the text form. `path` is named in errors.
[[nodiscard]] CBuilt buildText(std::string text, const std::string& path, const CProductParams& params);

} // namespace qrbpreset
