// SPDX-License-Identifier: GPL-3.0-or-later
// Building an object from a node of a compiled document:
//   kind 0:     u8 kind | u16 attributes | (u16 name, u16 value)... | u16 children | (u16 tag, u16 name, node)...
//   any other:  u8 kind | u16 class tag | u32 size | payload: u32 prefix, node of kind 0
#include "Core/CAttrExpansion.h"
#include "Core/CDocumentCursor.h"
#include "Core/CLog.h"
#include "Core/CObject.h"
#include "Core/CObjectTemplateRecord.h"
#include "Core/CProcessState.h"
#include "Core/CResourceReader.h"
#include "Core/CTextRecord.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr std::uint8_t kObjectKind = 0;
constexpr std::size_t kAttrBytes = 4;
constexpr std::size_t kMinChildBytes = 9; // tag, name, kind and two counts
constexpr std::size_t kPrefixBytes = 4;
constexpr std::uint64_t kMaxDocumentBytes = 256u * 1024u * 1024u;

} // namespace

CErrorPtr CObject::loadXMLData(const CString& name, ERunInit runInit)
{
    const double start = platform::clockSeconds();
    QRB_TRY(loadDocument(name, runInit));
    const double end = platform::clockSeconds();
    logFormat("loadXMLData \"%s\" init time: %.4f s @ %.4f s", name.toUtf8().c_str(), end - start,
              end - processState().clockBase);
    return {};
}

CErrorPtr CObject::loadDocument(const CString& name, ERunInit runInit)
{
    CResourceReader reader;
    QRB_TRY(reader.open(name));
    std::uint64_t size = 0;
    QRB_TRY(reader.getSize(size));
    CByteArray file;
    std::span<const std::uint8_t> document;
    const std::uint8_t* const memory = reader.getDirectData();
    if (memory != nullptr) {
        document = {memory, reader.getDirectSize()};
    } else {
        if (size > kMaxDocumentBytes)
            return QRB_ERROR("@qrbstr_CObject_loadXMLData_TooLarge Definition document '%1' is too large.", name);
        QRB_TRY(reader.readBytes(file, size));
        document = file.span();
    }

    auto* const loaded = new CObjectDocumentData;
    const CDocumentRef data(*loaded);
    std::span<const std::uint8_t> node;
    QRB_TRY(loaded->load(document, memory != nullptr, node));
    CLoadBudget budget;
    CDocumentCursor cursor(node, *loaded, budget);
    std::span<const std::uint8_t> prefix;
    if (!cursor.readBytes(kPrefixBytes, prefix))
        return damagedDocument();
    QRB_TRY(loadNode(cursor, runInit, ENodePart::all));
    return {};
}

CErrorPtr CObject::damagedDocument() const
{
    return QRB_ERROR("@qrbstr_CObject_loadNode_Damaged The definition document is damaged or ends too early.");
}

CErrorPtr CObject::loadNode(CDocumentCursor& cursor, ERunInit runInit, ENodePart part)
{
    std::uint8_t kind = 0;
    if (!cursor.read(kind))
        return damagedDocument();
    if (kind != kObjectKind)
        return loadTemplateRecord(cursor);

    QRB_TRY(loadAttrs(cursor, part == ENodePart::childs));
    if (part == ENodePart::attrs)
        return {};
    if (runInit == ERunInit::yes) {
        QRB_TRY(init());
        QRB_TRY(initAttrs());
    }
    QRB_TRY(loadChilds(cursor));
    if (runInit == ERunInit::yes) {
        QRB_TRY(initChilds());
        m_state = EObjectState::built;
    }
    return {};
}

CErrorPtr CObject::loadAttrs(CDocumentCursor& cursor, bool isSkipped)
{
    std::uint16_t count = 0;
    std::span<const std::uint8_t> rows;
    if (!cursor.read(count) || !cursor.readBytes(count * kAttrBytes, rows))
        return damagedDocument();
    if (isSkipped || count == 0)
        return {};

    const CObjectDocumentData& document = cursor.document();
    const std::size_t stringCount = document.stringCount();
    if (!m_isReadOnly) {
        m_attrs.reserveMore(count);
        holdDocument(document);
    }
    for (const std::uint8_t* row = rows.data(); row != rows.data() + rows.size(); row += kAttrBytes) {
        const std::size_t nameIndex = readDocumentU16(row);
        const std::size_t valueIndex = readDocumentU16(row + 2);
        if (nameIndex >= stringCount || valueIndex >= stringCount)
            return damagedDocument();
        const CTextRecord& name = document.string(nameIndex);
        const CObjectDocumentData::CBrief& value = document.brief(valueIndex);
        if (m_isReadOnly || name.text.empty())
            continue;
        // What is off is absent, unless it switches off what is there.
        const std::uint32_t hash = name.hash();
        std::size_t index = m_attrs.find(hash, name.text);
        if (value.isOff && index == CAttrTable::npos)
            continue;
        CTextRef text = CTextRef::borrowed(document.string(valueIndex));
        if (value.hasBrace)
            QRB_TRY(expandFromDocument(cursor, name, valueIndex, text));
        if (index == CAttrTable::npos && m_bindings == nullptr) {
            const CAttrSetter setter = findSetter(hash, name.text);
            index = m_attrs.append(hash, CTextRef::borrowed(name), CObjectAttr(std::move(text)), setter);
            if (setter != nullptr)
                queueSetter(index);
            continue;
        }
        if (index == CAttrTable::npos)
            index = addAttr(hash, CTextRef::borrowed(name));
        QRB_TRY(storeText(index, std::move(text), ESetter::queue));
    }
    return {};
}

CErrorPtr CObject::expandFromDocument(CDocumentCursor& cursor, const CTextRecord& name, std::size_t valueIndex,
                                      CTextRef& text)
{
    if (const CObjectDocumentData::CExpression* const expression = cursor.document().expression(valueIndex)) {
        const CTextRecord& reference = expression->reference.text.empty() ? name : expression->reference;
        const CObjectAttr* const found = CAttrExpansion::findInherited(*this, reference.hash(), reference.text);
        if (found == nullptr)
            text = CTextRef::borrowed(expression->def);
        else if (found->textRef() && found->textRef()->document == &cursor.document())
            text = CTextRef::borrowed(*found->textRef().record());
        else
            text = CAttrExpansion::textOf(*found);
        if (!text->hasBrace)
            return {};
    }
    const std::size_t lengthBefore = text.text().length();
    QRB_TRY(CAttrExpansion(*this, name.text).expand(text));
    return cursor.budget().spend(lengthBefore + text.text().length()) ? CErrorPtr{} : damagedDocument();
}

CErrorPtr CObject::loadChilds(CDocumentCursor& cursor)
{
    std::uint16_t count = 0;
    if (!cursor.read(count))
        return damagedDocument();
    m_childs.reserve(m_childs.size() + std::min<std::size_t>(count, cursor.bytesLeft() / kMinChildBytes));
    for (std::uint16_t i = 0; i < count; ++i) {
        const CTextRecord* tag = nullptr;
        const CTextRecord* name = nullptr;
        if (!cursor.readString(tag) || !cursor.readString(name))
            return damagedDocument();
        CObject* child = nullptr;
        QRB_TRY(createChild(child, tag->text, name->text, EFromTemplate::no));
        if (!cursor.budget().spend(child->fullName().length()))
            return damagedDocument();
        QRB_TRY(child->loadNode(cursor, ERunInit::yes, ENodePart::all));
        if (child->m_templateRecord != nullptr)
            m_templates.insert_or_assign(child->getName(), child);
    }
    return {};
}

CErrorPtr CObject::loadTemplateRecord(CDocumentCursor& cursor)
{
    const CTextRecord* classTag = nullptr;
    std::uint32_t size = 0;
    std::span<const std::uint8_t> payload;
    // Only what was made to be a name with a payload can skip its init, never an instance.
    if (!(m_tag == "template") || m_template != nullptr || !cursor.readString(classTag) || !cursor.read(size) ||
        !cursor.readBytes(size, payload))
        return damagedDocument();
    std::unique_ptr<CObjectTemplateRecord> record(new CObjectTemplateRecord);
    record->classTag = classTag->text;
    record->document = CDocumentRef(cursor.document());
    record->payload = payload;
    if (!cursor.document().isStatic()) {
        record->ownPayload = CByteArray(payload);
        record->payload = record->ownPayload.span();
    }
    m_templateRecord = std::move(record);
    QRB_TRY(initAttrs());
    QRB_TRY(initChilds());
    m_state = EObjectState::built;
    return {};
}

CErrorPtr CObject::loadTemplatePart(ENodePart part)
{
    const CObjectTemplateRecord& record = *m_template->m_templateRecord;
    CLoadBudget budget;
    CDocumentCursor cursor(record.payload, *record.document, budget);
    std::span<const std::uint8_t> prefix;
    if (!cursor.readBytes(kPrefixBytes, prefix))
        return damagedDocument();
    QRB_TRY(loadNode(cursor, ERunInit::no, part));
    return {};
}

void CObject::holdDocument(const CObjectDocumentData& document)
{
    for (const CDocumentRef& held : m_documents) {
        if (held.get() == &document)
            return;
    }
    m_documents.append(CDocumentRef(document));
}

} // namespace qrb
