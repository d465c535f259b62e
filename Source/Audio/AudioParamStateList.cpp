// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioParamStateList.h"

#include "Audio/Presets/CAudioPresetList.h"
#include "Audio/StateNames.h"
#include "Core/CAppData.h"
#include "Core/CTextSplit.h"

namespace qrb {

static void appendState(const CString& presetName, CArray<CString>& longNames, CArray<CString>& shortNames)
{
    const CArray<CString> forms = split(presetName, ';');
    const CString longName = forms.empty() ? CString() : forms[0].trimmed();
    longNames.append(longName);
    shortNames.append(forms.size() > 1 ? forms[1].trimmed() : longName.substr(0, kShortNameLength));
}

CErrorPtr readStateNameList(const CString& dataName, CArray<CString>& longNames, CArray<CString>& shortNames)
{
    CAppData* const local = CAppData::findScope("local");
    const CByteArray bytes = local != nullptr ? local->readData(dataName, kPresetListChunk) : CByteArray();
    if (bytes.empty())
        return QRB_ERROR("@qrbstr_CAudioParamDef_readStateNames_NoData No state names data available in '%1'.",
                         dataName);
    CAudioPresetList list;
    if (CErrorPtr error = list.load(bytes.span()))
        logError(error); // a user's damaged file costs the names, no more
    for (const CAudioPresetBank& bank : list.banks)
        for (const CAudioPreset& preset : bank.presets)
            appendState(preset.visibleName(), longNames, shortNames);
    return {};
}

} // namespace qrb
