// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"
#include "Core/CTextRef.h"

#include <cstdint>

namespace qrb {

/// A tagged value with the forms that readers ask for. A converted form is computed on first use and kept; a frozen
/// value has all its forms and is never written again, so that several threads may read it.
class CObjectAttr {
public:
    enum class EType : std::uint8_t { boolean, number, integer, string, none, empty };

    CObjectAttr() = default;
    CObjectAttr(bool value) : m_number(value ? 1.0 : 0.0), m_type(EType::boolean), m_hasNumber(true) {}
    CObjectAttr(double value) : m_number(value), m_type(EType::number), m_hasNumber(true) {}
    CObjectAttr(std::int32_t value) : m_number(value), m_type(EType::integer), m_hasNumber(true) {}
    CObjectAttr(const CString& value) : m_text(value), m_type(EType::string) {}
    CObjectAttr(CString&& value) : m_text(std::move(value)), m_type(EType::string) {}
    CObjectAttr(const char* narrow) : CObjectAttr(CString(narrow)) {}
    explicit CObjectAttr(CTextRef&& text) : m_text(std::move(text)), m_type(EType::string) {}
    /// The value that nothing converts to.
    [[nodiscard]] static CObjectAttr none();
    /// An address that code hands to code, such as to the root of a tree; nothing converts to or from it.
    [[nodiscard]] static CObjectAttr pointer(void* address);

    [[nodiscard]] EType type() const { return m_type; }

    /// Conversions; `def` where the value has no such form.
    [[nodiscard]] CString toString(const CString& def = {}) const;
    [[nodiscard]] bool toBool(bool def = false) const;
    [[nodiscard]] std::int32_t toInt(std::int32_t def = 0) const;
    [[nodiscard]] double toDouble(double def = 0.0) const;
    /// The address that was given; null in every other value.
    [[nodiscard]] void* toPointer() const { return m_pointer; }

    /// The text of a string value, or an empty reference.
    [[nodiscard]] const CTextRef& textRef() const { return m_text; }

    /// Fills all forms, so that later reads write nothing.
    void freeze();

private:
    [[nodiscard]] bool findNumber(double& out) const;
    [[nodiscard]] const CString& cachedText() const;

    mutable CTextRef m_text;       ///< a string's value; the cached text of another type
    mutable double m_number = 0.0; ///< boolean, number, integer; the cached number of a string
    void* m_pointer = nullptr;
    EType m_type = EType::empty;
    mutable bool m_hasNumber = false;   ///< m_number holds the number form
    mutable bool m_isNotNumber = false; ///< a string that was tried and is no number
};

} // namespace qrb
