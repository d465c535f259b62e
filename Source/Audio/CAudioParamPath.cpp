// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamPath.h"

namespace qrb {

namespace {

void appendSegment(CString& path, CString& segment)
{
    if (segment.empty()) {
        return;
    }
    if (!path.empty()) {
        path += ".";
    }
    path += segment;
    segment.clear();
}

} // namespace

CString resolveParamPath(const CString& processName, const CString& path)
{
    CString result = processName;
    CString segment;
    for (std::size_t i = 0; i < path.length(); ++i) {
        const char16_t unit = path.at(i);
        if (unit == u'/') {
            result.clear();
            segment.clear();
        } else if (unit == u'^') {
            appendSegment(result, segment);
            const std::size_t dot = result.rfind(u'.');
            result.truncate(dot == CString::npos ? 0 : dot);
        } else if (unit == u'.') {
            appendSegment(result, segment);
        } else {
            segment.append(unit);
        }
    }
    appendSegment(result, segment);
    return result;
}

CString paramProcessName(const CString& processName)
{
    CString result;
    bool isPosition = false;
    for (std::size_t i = 0; i < processName.length(); ++i) {
        const char16_t unit = processName.at(i);
        isPosition = unit == u'#' || (isPosition && unit != u'.');
        if (!isPosition) {
            result.append(unit);
        }
    }
    return result;
}

} // namespace qrb
