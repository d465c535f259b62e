// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDef.h"

#include "Audio/AudioParamStateList.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/StateNames.h"
#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

#include <cmath>
#include <utility>

namespace qrb {

/// Key values of text and byte block cells lie between these.
static constexpr double kMinKey = 0.0;
static constexpr double kMaxKey = 8388608.0;

void CAudioParamDef::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioParamDef::init()
{
    QRB_TRY(CObject::init());
    m_info.definitionPath = fullName();
    QRB_TRY(readFormat());
    readFlags();
    QRB_TRY(readConverters());
    QRB_TRY(readBounds());
    QRB_TRY(readStateNames());
    return readDefaults();
}

CErrorPtr CAudioParamDef::readFormat()
{
    CAudioParamFormat& format = m_info.format;
    format.elementSize = getAttrInt("element-size");
    if (format.elementSize <= 0 || format.elementSize > kAudioParamMaxElementSize)
        return QRB_ERROR("@qrbstr_CAudioParamDef_init_ElementSize Invalid element size %1 specified.",
                         format.elementSize);
    const CString type = getAttrString("data-type");
    if (type == "string" || type == "str" || type == "1")
        format.type = EAudioParamType::text;
    else if (type == "raw")
        format.type = EAudioParamType::raw;
    if (format.hasItems() && format.elementSize != 1)
        return QRB_ERROR(
            "@qrbstr_CAudioParamDef_init_DataElementSize Invalid element size %1 for non-float data specified.",
            format.elementSize);
    format.isSingleGroup = getAttrBool("is-single-group");
    format.isSingleElement = getAttrBool("is-single-element");
    return {};
}

void CAudioParamDef::readFlags()
{
    m_info.isPersistent = getAttrBool("is-persistent");
    m_info.isStorable = !m_info.isPersistent && getAttrBool("is-storable");
    m_info.isGlobal = m_info.isPersistent || m_info.isStorable || getAttrBool("is-global");
    m_info.visualName = getAttrString("visual-name");
    if (!m_info.format.hasItems() && m_info.format.elementSize == 1)
        m_info.registryPath = getAttrString("param-registry");
}

CErrorPtr CAudioParamDef::readConverters()
{
    for (std::int32_t i = 0; i < m_info.format.elementSize; ++i) {
        const CString name = i == 0 ? CString("converter") : CString("converter") + formatInteger(i + 1);
        const CString path = getAttrString(name).trimmed();
        if (path.empty())
            return QRB_ERROR("@qrbstr_CAudioParamDef_init_Converters Not enough converters defined %1 (should be %2).",
                             i, m_info.format.elementSize);
        const auto* const converter = dynamic_cast<const CAudioParamConverter*>(findObject(path));
        if (converter == nullptr)
            return QRB_ERROR("@qrbstr_CAudioParamDef_init_Converter Audio parameter converter '%1' not found.", path);
        CAudioParamInfo::CComponent& component = m_info.components.emplace();
        // A relative path means nothing to who reads the description elsewhere.
        const bool isRelative = path.at(0) == '.' || path.at(0) == '^';
        component.converterPath = isRelative ? converter->fullName() : path;
        component.converter = converter;
        component.min = kMinKey;
        component.max = kMaxKey;
    }
    return {};
}

static CArray<CString> splitBounds(const CString& text)
{
    CArray<CString> pieces;
    for (const CString& piece : split(text, ' '))
        if (const CString trimmed = piece.trimmed(); !trimmed.empty())
            pieces.append(trimmed);
    return pieces;
}

CErrorPtr CAudioParamDef::readBounds()
{
    if (m_info.format.hasItems())
        return {};
    const std::size_t size = static_cast<std::size_t>(m_info.format.elementSize);
    const CArray<CString> minimums = splitBounds(getAttrString("min-values"));
    if (minimums.size() < size)
        return QRB_ERROR("@qrbstr_CAudioParamDef_init_MinValues Not enough minimum values defined %1 (should be %2).",
                         minimums.size(), size);
    const CArray<CString> maximums = splitBounds(getAttrString("max-values"));
    if (maximums.size() < size)
        return QRB_ERROR("@qrbstr_CAudioParamDef_init_MaxValues Not enough maximum values defined %1 (should be %2).",
                         maximums.size(), size);
    for (std::size_t i = 0; i < size; ++i) {
        CAudioParamInfo::CComponent& component = m_info.components[i];
        const int index = static_cast<int>(i);
        component.min = component.converter->parseBound(m_info, index, minimums[i], nullptr);
        component.max = component.converter->parseBound(m_info, index, maximums[i], nullptr);
        if (component.min == component.max || !std::isfinite(component.min) || !std::isfinite(component.max))
            return QRB_ERROR("@qrbstr_CAudioParamDef_init_MinMax Zero default min-max values difference detected in "
                             "element %1.",
                             i);
    }
    return {};
}

CErrorPtr CAudioParamDef::readStateNames()
{
    const CString text = getAttrString("state-names");
    if (text.startsWith("@"))
        return readStateNameList(text.substr(1).trimmed(), m_info.longStateNames, m_info.shortStateNames);
    parseStateNames(text, m_info.longStateNames, m_info.shortStateNames);
    return {};
}

CErrorPtr CAudioParamDef::readDefaults()
{
    m_info.defaults.setFormat(m_info.format);
    std::int32_t group = 0;
    for (const CString& text : split(getAttrString("def-values"), ';'))
        QRB_TRY(readDefaultGroup(group++, text));
    if (m_info.defaults.cells(0).empty())
        return QRB_ERROR("@qrbstr_CAudioParamDef_init_NoDefaults No default values specified.");
    m_info.defaults.adoptDefaults();
    return {};
}

CErrorPtr CAudioParamDef::readDefaultGroup(std::int32_t group, const CString& text)
{
    CArray<double, 8> cells;
    CAudioParamData items;
    for (const CString& element : split(text, ','))
        QRB_TRY(readDefaultElement(element, cells, items));
    CAudioParamUpdate record;
    record.group = group == 0 ? kAudioParamTemplateGroup : group;
    record.elementCount = static_cast<std::int32_t>(cells.size()) / m_info.format.elementSize;
    record.isToEnd = true;
    record.format = m_info.format;
    record.values = cells.data();
    record.data = &items;
    if (!m_info.defaults.apply(record))
        return QRB_ERROR("@qrbstr_CAudioParamDef_init_DefaultCount Too many default values specified.");
    return {};
}

CErrorPtr CAudioParamDef::readDefaultElement(const CString& text, CArray<double, 8>& cells,
                                             CAudioParamData& items) const
{
    if (m_info.format.type == EAudioParamType::text) {
        // Not trimmed: a blank is a text, too.
        cells.append(items.addText(text));
        return {};
    }
    if (m_info.format.type == EAudioParamType::raw) {
        cells.append(items.addRaw({}));
        return {};
    }
    const bool isList = m_info.format.elementSize >= 2;
    CArray<CString> tokens;
    if (isList)
        tokens = splitBounds(text);
    else
        tokens.append(text.trimmed());
    for (std::size_t i = 0; i < m_info.components.size(); ++i) {
        if (i >= tokens.size())
            return QRB_ERROR("@qrbstr_CAudioParamDef_init_DefaultElements Not enough default elements at pos %1.",
                             cells.size());
        bool isRead = false;
        cells.append(m_info.components[i].converter->parseValue(m_info, static_cast<int>(i), tokens[i], &isRead));
        if (!isRead)
            return QRB_ERROR("@qrbstr_CAudioParamDef_init_DefaultParse Default values parsing error.");
    }
    return {};
}

} // namespace qrb
