// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CScreen.h"

#include "Tools/Monitor/Client/CMonitor.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace monitor {

namespace {

constexpr const char* kPlain = "\x1b[0m";
constexpr const char* kReverse = "\x1b[7m";
constexpr const char* kBold = "\x1b[1m";
constexpr const char* kFaint = "\x1b[2m";
constexpr const char* kGreen = "\x1b[32m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kRed = "\x1b[31m";

constexpr double kMeterRange = 60.0;     // dB
constexpr double kReductionRange = 24.0; // dB
constexpr double kChangeRange = 18.0;    // dB, to either side
constexpr double kSpectrumTop = -6.0;    // dB
constexpr double kSpectrumStep = 9.0;    // dB a row
constexpr int kSpectrumRows = 8;
constexpr int kLongestBar = 80;

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Text of exactly so many characters.
std::string fit(const std::string& text, int width)
{
    int count = 0;
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (isContinuation(text[end]))
            continue;
        if (count == width)
            break;
        ++count;
    }
    return text.substr(0, end) + std::string(static_cast<std::size_t>(std::max(width - count, 0)), ' ');
}

std::string decibels(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%7.1f", value > -0.05 && value < 0.05 ? 0.0 : value);
    return text;
}

const char* colourOf(double level)
{
    return level >= 0.0 ? kRed : level >= -9.0 ? kYellow : kGreen;
}

/// Which cells of a bar a level fills; the last of them is its mark.
struct CCells {
    int begin = 0;
    int end = 0;
    int mark = 0;
};

CCells cellsOf(double level, CPicture::EMeter kind, int count)
{
    const auto place = [count](double share) {
        return std::clamp(static_cast<int>(std::lround(share * count)), 0, count);
    };
    if (kind == CPicture::EMeter::change) {
        const int middle = count / 2;
        const int end = place(0.5 + 0.5 * level / kChangeRange);
        return end < middle ? CCells{end, middle, end} : CCells{middle, end, end - 1};
    }
    const int end = place(kind == CPicture::EMeter::reduction ? -level / kReductionRange : level / kMeterRange + 1.0);
    return {0, end, end - 1};
}

std::string barOf(const CPicture::CMeter& meter, CPicture::EMeter kind, int count)
{
    const CCells value = cellsOf(meter.value, kind, count);
    const int mark = cellsOf(meter.peak, kind, count).mark;
    std::string text;
    for (int cell = 0; cell < count; ++cell) {
        const double level = (cell + 0.5) / count * kMeterRange - kMeterRange;
        const char sign = cell == mark ? '|' : cell >= value.begin && cell < value.end ? '=' : ' ';
        if (sign != ' ')
            text += kind != CPicture::EMeter::level ? kYellow : colourOf(cell == mark ? meter.peak : level);
        text += sign;
    }
    return text + kPlain;
}

} // namespace

void CScreen::addLine(const std::string& text, const char* style)
{
    m_lines.push_back(style + fit(text, m_columns) + kPlain);
}

void CScreen::addHead(const CPicture& picture)
{
    char time[64];
    std::snprintf(time, sizeof time, "  %.1f s  %.0f Hz  %d in  %d out  %d key", picture.seconds, picture.sampleRate,
                  picture.inputs, picture.outputs, picture.keys);
    addLine(" " + picture.title + time, kReverse);
    addLine(" Preset: " + picture.preset + "   [" + picture.side + "]   program " +
                std::to_string(picture.program + 1) + " of " + std::to_string(picture.programCount),
            kBold);
}

void CScreen::addMeters(const CPicture& picture)
{
    constexpr int kTextWidth = 30;
    const int cells = std::clamp(m_columns - kTextWidth, 0, kLongestBar);
    for (const CPicture::CMeters& meters : picture.meters)
        for (const CPicture::CMeter& meter : meters.lines) {
            const std::string name = fit(" " + std::string(meters.name) + " " + meter.line, 11);
            const std::string numbers = decibels(meter.value) + " " + decibels(meter.peak) + " ";
            if (m_columns < kTextWidth)
                addLine(name + numbers);
            else
                m_lines.push_back(name + numbers + barOf(meter, meters.kind, cells));
        }
}

void CScreen::addSpectrum(const CPicture& picture)
{
    if (picture.spectrum.empty())
        return;
    const int width = m_columns >= static_cast<int>(picture.spectrum.size()) * 2 + 8 ? 2 : 1;
    for (int row = 0; row < kSpectrumRows; ++row) {
        const double level = kSpectrumTop - row * kSpectrumStep;
        std::string text = decibels(level) + " ";
        for (const double band : picture.spectrum)
            text += std::string(static_cast<std::size_t>(width), band >= level                       ? '#'
                                                                 : band >= level - kSpectrumStep / 2 ? '.'
                                                                                                     : ' ');
        addLine(text, kGreen);
    }
    std::string scale(8, ' ');
    for (const char* const text : {"31", "63", "125", "250", "500", "1k", "2k", "4k", "8k", "16k"})
        scale += fit(std::string(" ") + text, 3 * width);
    addLine(scale, kFaint);
}

void CScreen::addSettings(const CPicture& picture)
{
    constexpr int kNameWidth = 25;
    constexpr int kSettingWidth = 40;
    const int shownHistory = static_cast<int>(picture.controls.size());
    const int first = std::max(0, std::min(picture.historyPosition - shownHistory / 2,
                                           static_cast<int>(picture.history.size()) - shownHistory));
    addLine(fit(" Group " + picture.group + ", band " + std::to_string(picture.band + 1), kSettingWidth) + "History",
            kFaint);
    for (std::size_t i = 0; i < picture.controls.size(); ++i) {
        const CPicture::CControl& control = picture.controls[i];
        const int line = first + static_cast<int>(i);
        const int settingWidth = std::min(kSettingWidth, m_columns);
        std::string text = (control.isSelected ? kReverse : "") +
                           fit(" " + fit(control.name, kNameWidth) + control.value, settingWidth) + kPlain;
        if (line < static_cast<int>(picture.history.size())) {
            const bool isNow = line == picture.historyPosition;
            text += line > picture.historyPosition ? kFaint : isNow ? kBold : "";
            text +=
                fit((isNow ? "> " : "  ") + picture.history[static_cast<std::size_t>(line)], m_columns - settingWidth);
            text += kPlain;
        }
        m_lines.push_back(text);
    }
}

std::string CScreen::paint(const CPicture& picture, int columns, int rows)
{
    m_columns = columns - 1; // in the last one a terminal would wrap
    m_lines.clear();
    addHead(picture);
    addMeters(picture);
    addSpectrum(picture);
    addSettings(picture);
    const std::string help = CMonitor::keyHelp();
    for (std::size_t begin = 0; begin < help.size();) {
        const std::size_t end = help.find('\n', begin);
        addLine(" " + help.substr(begin, end - begin), kFaint);
        begin = end + 1;
    }
    const std::size_t count = std::min(m_lines.size(), static_cast<std::size_t>(rows));
    m_lines.resize(count);
    std::string text;
    if (columns != m_shownColumns || rows != m_shownRows) {
        text = "\x1b[2J";
        m_shown.clear();
    }
    const auto goTo = [&text](std::size_t row) { text += "\x1b[" + std::to_string(row + 1) + ";1H"; };
    for (std::size_t row = 0; row < count; ++row) {
        if (row < m_shown.size() && m_shown[row] == m_lines[row])
            continue;
        goTo(row);
        text += m_lines[row] + "\x1b[K";
    }
    if (count < m_shown.size()) {
        goTo(count);
        text += "\x1b[J";
    }
    m_shown = std::move(m_lines);
    m_shownColumns = columns;
    m_shownRows = rows;
    return text;
}

} // namespace monitor
