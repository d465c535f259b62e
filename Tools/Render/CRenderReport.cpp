// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderReport.h"

#include <algorithm>
#include <cmath>
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

/// JSON knows finite numbers only.
std::string jsonLevel(double decibels)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", decibels);
    return std::isfinite(decibels) ? text : "null";
}

/// For a terminal, which a name from a file has not to command.
std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
    return text;
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

void printList(std::FILE* to, const std::vector<CFilePlayer::CParamText>& list, bool isJson)
{
    if (isJson) {
        std::fprintf(to, "[");
        for (std::size_t i = 0; i < list.size(); ++i) {
            const auto& p = list[i];
            std::fprintf(to,
                         "%s\n  {\"path\": %s, \"groups\": %d, \"elements\": %d, \"value\": %s, \"min\": %s, "
                         "\"max\": %s, \"default\": %s, \"unit\": %s}",
                         i > 0 ? "," : "", jsonString(p.path).c_str(), p.groups, p.elements,
                         jsonString(p.values).c_str(), jsonString(p.min).c_str(), jsonString(p.max).c_str(),
                         jsonString(p.defaults).c_str(), jsonString(p.unit).c_str());
        }
        std::fprintf(to, "\n]\n");
        return;
    }
    std::size_t width = 0;
    for (const auto& p : list)
        width = std::max(width, p.path.size());
    for (const auto& p : list) {
        std::fprintf(to, "%-*s  %d x %d  %s", static_cast<int>(width), p.path.c_str(), p.groups, p.elements,
                     p.values.c_str());
        if (!p.min.empty())
            std::fprintf(to, "  (%s to %s%s%s)", p.min.c_str(), p.max.c_str(), p.unit.empty() ? "" : " ",
                         p.unit.c_str());
        std::fprintf(to, "  default %s\n", p.defaults.c_str());
    }
}

void printPresets(std::FILE* to, const std::vector<CFilePlayer::CPresetText>& list, bool isJson)
{
    std::string text = isJson ? "[" : "";
    for (std::size_t i = 0; i < list.size(); ++i) {
        const CFilePlayer::CPresetText& preset = list[i];
        if (isJson)
            text += std::string(i > 0 ? "," : "") + "\n  {\"name\": " + jsonString(preset.name) +
                    ", \"registry\": " + jsonString(preset.registry) +
                    ", \"current\": " + (preset.isCurrent ? "true" : "false") + "}";
        else
            text += (preset.isCurrent ? "* " : "  ") + printable(preset.name) + "\n";
    }
    std::fprintf(to, "%s%s", text.c_str(), isJson ? "\n]\n" : "");
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
                 "\"seconds\": %.6f, \"timesRealTime\": %.2f, \"blockSize\": %zu, \"peakInDb\": %s, "
                 "\"rmsInDb\": %s, \"peakOutDb\": %s, \"rmsOutDb\": %s, \"latency\": %d}\n",
                 jsonString(s.inFile).c_str(), jsonString(s.outFile).c_str(), s.channels, s.sampleRate,
                 static_cast<unsigned long long>(s.frames), durationOf(s), timesRealTime(s), s.blockSize,
                 jsonLevel(s.in.peakDb()).c_str(), jsonLevel(s.in.rmsDb()).c_str(), jsonLevel(s.out.peakDb()).c_str(),
                 jsonLevel(s.out.rmsDb()).c_str(), s.latency);
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
