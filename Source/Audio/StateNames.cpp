// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/StateNames.h"

#include "Core/CTextSplit.h"

namespace qrb {

void parseStateNames(const CString& text, CArray<CString>& longNames, CArray<CString>& shortNames)
{
    for (const CString& state : split(text, ';', EEmpty::drop)) {
        const CArray<CString> forms = split(state, '|', EEmpty::drop);
        const CString longName = forms.empty() ? CString() : forms[0].trimmed();
        const CString shortName = forms.size() > 1 ? forms[1].trimmed() : longName;
        longNames.append(longName);
        shortNames.append(shortName.substr(0, kShortNameLength));
    }
}

} // namespace qrb
