// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CFileHost.h"
#include "Tools/Render/CRenderOptions.h"
#include "Tools/Render/CRenderReport.h"

#include <string>

namespace render {

/// One rendering: input files through an instance into an output file, as an offline host would do it.
class CRenderJob {
public:
    explicit CRenderJob(const CRenderOptions& options) : m_options(options), m_host(options) {}

    /// Does what the options ask for. False with one line in `error`; no output file is left behind then.
    [[nodiscard]] bool run(std::string& error);

private:
    [[nodiscard]] bool render(std::string& error);
    void printList();
    void printSummary();

    const CRenderOptions& m_options;
    CFileHost m_host;
    CRenderSummary m_summary;
};

} // namespace render
