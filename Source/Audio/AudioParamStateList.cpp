// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioParamStateList.h"

#include "Core/CAppData.h"
#include "Core/CChunkId.h"

namespace qrb {

CErrorPtr readStateNameList(const CString& dataName, CArray<CString>&, CArray<CString>&)
{
    CAppData* const local = CAppData::findScope("local");
    if (local == nullptr || local->readData(dataName, chunkId("alst")).empty())
        return QRB_ERROR("@qrbstr_CAudioParamDef_readStateNames_NoData No state names data available in '%1'.",
                         dataName);
    return {};
}

} // namespace qrb
