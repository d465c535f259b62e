// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/ParamFilters/CAudioParamFilter.h"
#include "Core/CTextSplit.h"

#include <utility>

namespace qrb {

namespace {

CArray<CString> readPaths(const CString& text)
{
    CArray<CString> paths;
    for (const CString& piece : split(text, ',')) {
        CString path = piece.trimmed();
        if (!path.empty())
            paths.append(std::move(path));
    }
    return paths;
}

} // namespace

void CAudioParamFilterDef::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioParamFilterDef::init()
{
    QRB_TRY(CObject::init());
    m_sources = readPaths(getAttrString("src"));
    if (m_sources.empty())
        return QRB_ERROR("@qrbstr_CAudioParamFilterDef_init_Src No source parameters defined.");
    m_destinations = readPaths(getAttrString("dst"));
    if (m_destinations.empty())
        return QRB_ERROR("@qrbstr_CAudioParamFilterDef_init_Dst No destination parameters defined.");
    return {};
}

CErrorPtr CAudioParamFilterDef::addTo(CAudioParamCollector& collector, const CString& processPath) const
{
    std::unique_ptr<CAudioParamFilter> filter = createFilter();
    QRB_TRY(filter->init(processPath, collector, m_sources.span(), m_destinations.span()));
    collector.addFilter(std::move(filter));
    return {};
}

} // namespace qrb
