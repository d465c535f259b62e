// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CRenderOptions.h"
#include "Tools/Render/CRenderReport.h"

#include <memory>
#include <string>

namespace render {

class CFilePlayer;

/// One rendering: input files through an instance into an output file, as an offline host would do it.
class CRenderJob {
public:
    explicit CRenderJob(const CRenderOptions& options);
    ~CRenderJob();
    CRenderJob(const CRenderJob&) = delete;
    CRenderJob& operator=(const CRenderJob&) = delete;

    /// Does what the options ask for. False with one line in `error`; no output file is left behind then.
    [[nodiscard]] bool run(std::string& error);

private:
    [[nodiscard]] bool render(std::string& error);
    /// Takes what is to be saved before the first sample plays.
    [[nodiscard]] bool takeSaves(std::string& error);
    [[nodiscard]] bool writeSaves(std::string& error) const;
    void printSummary();

    const CRenderOptions& m_options;
    std::unique_ptr<CFilePlayer> m_player;
    std::string m_preset;
    std::string m_state;
    CRenderSummary m_summary;
};

} // namespace render
