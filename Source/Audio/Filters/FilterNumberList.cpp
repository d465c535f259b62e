// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterNumberList.h"

#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

namespace qrb {

bool parseNumberList(const CString& text, CArray<double, 8>& out)
{
    if (text.empty())
        return true;
    for (const CString& piece : split(text, u',', EEmpty::keep)) {
        double number = 0.0;
        if (!parseNumber(piece.trimmed(), number))
            return false;
        out.append(number);
    }
    return true;
}

} // namespace qrb
