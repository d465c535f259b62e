// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CAttrDictionary.h"
#include "Core/CAttrSetter.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"
#include "Core/CTextRef.h"

#include <cstdint>
#include <utility>

namespace qrb {

class CObject;

/// One named event of a class: exactly one of the two handlers is set.
struct CObjectEvent {
    CString name;
    CErrorPtr (*handler)(CObject& object) = nullptr;
    CErrorPtr (*handlerWithArgs)(CObject& object, const CEventArgs& args) = nullptr;

    [[nodiscard]] CErrorPtr call(CObject& object, const CEventArgs& args) const;
};

namespace detail {
template <class T>
struct CMemberOf;
template <class T, class... A>
struct CMemberOf<CErrorPtr (T::*)(A...)> {
    using Class = T;
    static constexpr bool kTakesArgs = sizeof...(A) == 1;
};
} // namespace detail

/// What a class declares: setters of attributes, events, defaults of attributes. Filled by the class's
///     static void declare(CObjectClassInfo& info);
/// which first calls the declare function of its base. Made at module entry, read-only afterwards.
/// Thread: any, once filled.
class CObjectClassInfo : public CCheckedObject {
public:
    /// A row in the table of attributes.
    struct CAttrRow {
        CTextRef name;
        CAttrSetter setter = nullptr;
    };
    /// An attribute that every object of the class has before its document's attributes come.
    struct CDefaultRow {
        CTextRef name;
        CTextRef value;
    };

    /// Declares `name` with the setter CErrorPtr T::method(const CObjectAttr&).
    template <auto method>
    void attr(const char* name)
    {
        using T = typename detail::CMemberOf<decltype(method)>::Class;
        addAttr(name, [](CObject& object, const CObjectAttr& value) -> CErrorPtr {
            return (static_cast<T&>(object).*method)(value);
        });
    }

    /// Declares the event `name`: CErrorPtr T::method() or CErrorPtr T::method(const CEventArgs&).
    template <auto method>
    void event(const char* name)
    {
        using Member = detail::CMemberOf<decltype(method)>;
        using T = typename Member::Class;
        CObjectEvent row;
        if constexpr (Member::kTakesArgs)
            row.handlerWithArgs = [](CObject& object, const CEventArgs& args) -> CErrorPtr {
                return (static_cast<T&>(object).*method)(args);
            };
        else
            row.handler = [](CObject& object) -> CErrorPtr { return (static_cast<T&>(object).*method)(); };
        addEvent(name, std::move(row));
    }

    /// Gives `name` a value that stands in the map before the document's attributes are applied, so that a "false"
    /// in a document finds an entry and switches off what is on by default.
    void def(const char* name, const char* value);

    /// The setter of an attribute, or null.
    [[nodiscard]] CAttrSetter findSetter(std::uint32_t hash, const CString& name) const;
    /// The event of that name, or null.
    [[nodiscard]] const CObjectEvent* findEvent(const CString& name) const;
    [[nodiscard]] const CArray<CDefaultRow>& defaults() const { return m_defaults; }

private:
    void addAttr(const char* name, CAttrSetter setter);
    void addEvent(const char* name, CObjectEvent event);
    void rebuildSlots();

    CArray<CAttrRow> m_attrs;
    CArray<std::uint16_t> m_slots; ///< open addressing by hash: index into m_attrs plus one, 0 for a free slot
    CArray<CDefaultRow> m_defaults;
    CMap<CString, CObjectEvent> m_events;
};

} // namespace qrb
