// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/VstText.h"

#include <algorithm>

namespace qrb {

void copyToHost(const CString& text, Steinberg::Vst::String128 out)
{
    const std::size_t count = std::min<std::size_t>(text.length(), 127);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = text.at(i);
    out[count] = 0;
}

CString textOfHost(const Steinberg::Vst::TChar* text, std::size_t limit)
{
    CString out;
    for (std::size_t i = 0; text != nullptr && i < limit && text[i] != 0; ++i)
        out.append(text[i]);
    return out;
}

} // namespace qrb
