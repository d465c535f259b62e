// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/SpeakerNames.h"

#include <algorithm>
#include <iterator>

namespace qrb {

/// By bit number.
static constexpr const char* kNames[] = {"L",   "R",   "C",   "Lfe", "Ls",  "Rs",  "Lc",  "Rc",  "S",    "Sl",
                                         "Sr",  "Tm",  "Tfl", "Tfc", "Tfr", "Trl", "Trc", "Trr", "Lfe2", "M",
                                         "B-W", "B-X", "B-Y", "B-Z", "Tsl", "Tsr", "Lcs", "Rcs"};

const char* speakerName(std::uint32_t bit)
{
    return bit < std::size(kNames) ? kNames[bit] : "";
}

CArray<CString> speakerNames(std::uint64_t arrangement)
{
    CArray<CString> names;
    for (std::uint32_t bit = 0; bit < 64; ++bit)
        if ((arrangement >> bit & 1) != 0)
            names.append(speakerName(bit));
    return names;
}

bool isSpeakerName(const CString& text)
{
    return std::any_of(std::begin(kNames), std::end(kNames), [&](const char* name) { return text == name; });
}

} // namespace qrb
