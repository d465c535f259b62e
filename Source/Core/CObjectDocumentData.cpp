// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObjectDocumentData.h"

#include "Core/CDocumentCursor.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace qrb {

namespace {

constexpr std::size_t kMaxStrings = 65536; // indices are u16
constexpr std::size_t kOffsetBytes = 4;
const char* const kBadTable = "@qrbstr_CObjectDocumentData_load_BadTable The string table of the definition document "
                              "is damaged.";

} // namespace

CObjectDocumentData::~CObjectDocumentData()
{
    std::destroy_n(m_strings, m_count);
    CQrbMemAllocator::release(m_strings);
}

void CObjectDocumentData::release() const
{
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

CErrorPtr CObjectDocumentData::load(std::span<const std::uint8_t> document, bool isStatic,
                                    std::span<const std::uint8_t>& node)
{
    CLoadBudget budget;
    CDocumentCursor cursor(document, *this, budget);
    std::uint32_t count = 0;
    std::uint32_t blockSize = 0;
    std::span<const std::uint8_t> block;
    if (!cursor.read(count) || !cursor.read(blockSize) || !cursor.readBytes(blockSize, block) || count > kMaxStrings ||
        blockSize / kOffsetBytes < count)
        return QRB_ERROR(kBadTable);
    if (!cursor.readBytes(cursor.bytesLeft(), node))
        return QRB_ERROR(kBadTable);

    m_isStatic = isStatic;
    m_strings = static_cast<CTextRecord*>(CQrbMemAllocator::allocate(count * sizeof(CTextRecord)));
    m_briefs.reserve(count);
    CDocumentCursor offsets(block.first(count * kOffsetBytes), *this, budget);
    // Strings do not share bytes, so all of them together are no longer than the block.
    std::size_t bytesLeft = blockSize - count * kOffsetBytes;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t offset = 0;
        if (!offsets.read(offset) || offset < count * kOffsetBytes || offset >= blockSize)
            return QRB_ERROR(kBadTable);
        const auto start = block.begin() + offset;
        const auto end =
            std::find(start, start + static_cast<std::ptrdiff_t>(std::min<std::size_t>(bytesLeft, blockSize - offset)),
                      std::uint8_t{0});
        const auto length = static_cast<std::size_t>(end - start);
        if (length >= bytesLeft || offset + length >= blockSize)
            return QRB_ERROR(kBadTable);
        bytesLeft -= length + 1;
        addString(CString::fromUtf8({reinterpret_cast<const char*>(block.data()) + offset, length}));
    }
    return {};
}

void CObjectDocumentData::addString(CString&& text)
{
    CTextRecord* const record = ::new (static_cast<void*>(m_strings + m_count)) CTextRecord;
    ++m_count;
    record->assign(std::move(text));
    record->document = this;
    m_briefs.append({record->hasBrace ? addExpression(record->text) : -1, record->hasBrace, record->isOff});
}

std::int32_t CObjectDocumentData::addExpression(const CString& text)
{
    const char16_t first = text.at(1); // the text holds a "{", so there is at least the terminator
    if (text.at(0) != u'{' || text.find(u'{', 1) != CString::npos || text.find(u'}') != text.length() - 1 ||
        first == u'@' || first == u'*' || first == u'/')
        return -1;
    const CString body = text.substr(1, text.length() - 2);
    const std::size_t mark = body.find(u'?');
    CExpression& expression = m_expressions.emplace_back();
    expression.reference.assign(body.substr(0, mark));
    expression.reference.document = this;
    expression.def.assign(mark == CString::npos ? CString() : body.substr(mark + 1));
    expression.def.document = this;
    return static_cast<std::int32_t>(m_expressions.size() - 1);
}

} // namespace qrb
