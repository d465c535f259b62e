// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/PlainLines.h"

#include "Tools/Monitor/Client/CPicture.h"
#include "Tools/Monitor/Client/CSpectrumView.h"

#include <cstdarg>
#include <cstdio>

namespace monitor {

namespace {

[[gnu::format(printf, 2, 3)]] void append(std::string& text, const char* pattern, ...)
{
    char buffer[256];
    va_list args;
    va_start(args, pattern);
    std::vsnprintf(buffer, sizeof buffer, pattern, args);
    va_end(args);
    text += buffer;
}

/// A level so that it reads alike whatever rounding has left of nothing.
double shown(double decibels)
{
    return decibels > -0.005 && decibels < 0.005 ? 0.0 : decibels;
}

} // namespace

std::string plainLines(const CPicture& picture)
{
    std::string text;
    append(text, "frame %d %.3f s\n", picture.frame, picture.seconds);
    text += "preset " + picture.preset + "\n";
    append(text, "program %d of %d\nside %c\n", picture.program + 1, picture.programCount, picture.side);
    append(text, "setup %.0f Hz %d in %d out %d key\n", picture.sampleRate, picture.inputs, picture.outputs,
           picture.keys);
    for (const CPicture::CMeters& meters : picture.meters)
        for (const CPicture::CMeter& meter : meters.lines)
            append(text, "%s %s %.2f peak %.2f\n", meters.name, meter.line.c_str(), shown(meter.value),
                   shown(meter.peak));
    for (std::size_t i = 0; i < picture.octaves.size(); ++i)
        append(text, "octave %.0f %.1f\n", CSpectrumView::frequency(static_cast<int>(i), 1), shown(picture.octaves[i]));
    for (const CPicture::CControl& control : picture.controls)
        text += (control.isSelected ? "selected " : "control ") + control.name + " = " + control.value + "\n";
    for (std::size_t i = 0; i < picture.history.size(); ++i) {
        const int line = static_cast<int>(i);
        text += line == picture.historyPosition ? "now " : line < picture.historyPosition ? "undo " : "redo ";
        text += picture.history[i] + "\n";
    }
    return text + "\n";
}

} // namespace monitor
