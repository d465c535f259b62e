// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextSplit.h"

#include <algorithm>

namespace qrb {

CArray<CString> split(const CString& text, char16_t separator, EEmpty empty)
{
    CArray<CString> pieces;
    for (std::size_t first = 0; first <= text.length();) {
        const std::size_t end = std::min(text.find(separator, first), text.length());
        if (end > first || empty == EEmpty::keep) {
            pieces.append(text.substr(first, end - first));
        }
        first = end + 1;
    }
    return pieces;
}

} // namespace qrb
