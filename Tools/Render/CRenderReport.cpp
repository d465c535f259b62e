// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderReport.h"

#include <algorithm>
#include <unistd.h>

namespace render {

namespace {

constexpr int kBarCells = 40;

double durationOf(const CRenderSummary& summary)
{
    return summary.sampleRate > 0.0 ? static_cast<double>(summary.frames) / summary.sampleRate : 0.0;
}

double timesRealTime(const CRenderSummary& summary)
{
    return summary.seconds > 0.0 ? durationOf(summary) / summary.seconds : 0.0;
}

} // namespace

std::string jsonString(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            out += escape;
        } else {
            out += c;
        }
    }
    return out + '"';
}

void printSummary(std::FILE* to, const CRenderSummary& s)
{
    std::fprintf(to, "%s: %d channel%s, %.0f Hz, %.3f s\n", s.outFile.c_str(), s.channels, s.channels == 1 ? "" : "s",
                 s.sampleRate, durationOf(s));
    std::fprintf(to, "  speed    %.0f times real time (blocks of %zu)\n", timesRealTime(s), s.blockSize);
    std::fprintf(to, "  in       peak %.2f dB, RMS %.2f dB\n", s.in.peakDb(), s.in.rmsDb());
    std::fprintf(to, "  out      peak %.2f dB, RMS %.2f dB\n", s.out.peakDb(), s.out.rmsDb());
    std::fprintf(to, "  latency  %d samples\n", s.latency);
}

void printSummaryJson(std::FILE* to, const CRenderSummary& s)
{
    std::fprintf(to,
                 "{\"in\": %s, \"out\": %s, \"channels\": %d, \"sampleRate\": %.0f, \"frames\": %llu, "
                 "\"seconds\": %.6f, \"timesRealTime\": %.2f, \"blockSize\": %zu, \"peakInDb\": %.4f, "
                 "\"rmsInDb\": %.4f, \"peakOutDb\": %.4f, \"rmsOutDb\": %.4f, \"latency\": %d}\n",
                 jsonString(s.inFile).c_str(), jsonString(s.outFile).c_str(), s.channels, s.sampleRate,
                 static_cast<unsigned long long>(s.frames), durationOf(s), timesRealTime(s), s.blockSize, s.in.peakDb(),
                 s.in.rmsDb(), s.out.peakDb(), s.out.rmsDb(), s.latency);
}

CProgressBar::CProgressBar() : m_isTerminal(isatty(STDERR_FILENO) == 1) {}

void CProgressBar::show(double share)
{
    if (!m_isTerminal)
        return;
    const int cells = std::clamp(static_cast<int>(share * kBarCells), 0, kBarCells);
    if (cells == m_shown)
        return;
    m_shown = cells;
    const std::string bar = std::string(static_cast<std::size_t>(cells), '#') +
                            std::string(static_cast<std::size_t>(kBarCells - cells), '.');
    std::fprintf(stderr, "\r[%s] %3d %%", bar.c_str(), cells * 100 / kBarCells);
    std::fflush(stderr);
}

void CProgressBar::clear()
{
    if (m_isTerminal && m_shown >= 0)
        std::fprintf(stderr, "\r%*s\r", kBarCells + 8, "");
    m_shown = -1;
}

} // namespace render
