// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CFilePlayer.h"
#include "Tools/Render/CLevelStats.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace render {

/// What a rendering came to.
struct CRenderSummary {
    std::string inFile;
    std::string outFile;
    int channels = 0;
    double sampleRate = 0.0;
    std::uint64_t frames = 0;  ///< of the input
    std::size_t blockSize = 0; ///< samples
    int latency = 0;           ///< samples the instance reports at the end
    double seconds = 0.0;      ///< spent in the instance's processing alone
    CLevelStats in;
    CLevelStats out;
};

void printList(std::FILE* to, const std::vector<CFilePlayer::CParamText>& list, bool isJson);
void printPresets(std::FILE* to, const std::vector<CFilePlayer::CPresetText>& list, bool isJson);
void printSummary(std::FILE* to, const CRenderSummary& summary);
void printSummaryJson(std::FILE* to, const CRenderSummary& summary);

/// `text` (UTF-8) as a JSON string with its quotes.
[[nodiscard]] std::string jsonString(const std::string& text);

/// A bar on stderr that follows a share from 0 to 1; silent where stderr is no terminal.
class CProgressBar {
public:
    CProgressBar();
    void show(double share);
    /// Takes the bar off the screen.
    void clear();

private:
    bool m_isTerminal;
    int m_shown = -1; ///< filled cells on the screen, -1 before the first
};

} // namespace render
