// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Product/CDocumentModule.h"

namespace render {

/// Holds the module entered with the product's own data files, all linked in.
class CProductModule : public product::CDocumentModule {
public:
    /// `own`: data files of the tool itself. On failure `error` gets one line, and the module is not entered.
    explicit CProductModule(std::string& error, std::span<const qrb::CResourceRow> own = {});
};

} // namespace render
