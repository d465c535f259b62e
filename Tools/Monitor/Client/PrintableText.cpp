// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/PrintableText.h"

#include <cstddef>

namespace monitor {

std::string printable(std::string text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool isControl = byte < 0x20 || byte == 0x7F;
        // U+0080 to U+009F: C2 80 to C2 9F.
        const bool isHighControl =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (isHighControl)
            text.erase(i + 1, 1);
        if (isControl || isHighControl)
            text[i] = '?';
    }
    return text;
}

} // namespace monitor
