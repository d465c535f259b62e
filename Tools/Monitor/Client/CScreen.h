// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Monitor/Client/CPicture.h"

#include <string>
#include <vector>

namespace monitor {

/// Lays a picture out for a terminal of whatever size.
class CScreen {
public:
    /// Sequences that make the picture of the last one; of the first, on an empty screen.
    [[nodiscard]] std::string paint(const CPicture& picture, int columns, int rows);

private:
    void addHead(const CPicture& picture);
    void addMeters(const CPicture& picture);
    void addSpectrum(const CPicture& picture);
    void addSettings(const CPicture& picture);
    /// A line of text, cut or filled to a width; `style` holds for all of it.
    void addLine(const std::string& text, const char* style = "");

    int m_columns = 0;
    std::vector<std::string> m_lines;
    std::vector<std::string> m_shown; ///< lines of the last picture
    int m_shownColumns = 0;
    int m_shownRows = 0;
};

} // namespace monitor
