// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamData.h"
#include "Audio/CAudioParamFormat.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <cstdint>
#include <span>

namespace qrb {

class CAudioParamInfo;
class CAudioParamUpdateRecord;
struct CAudioParamUpdate;

/// Table of a parameter's values: groups of elements of components, and the default elements that fill elements which do
/// not exist yet. A parameter has three: what editors and presets see, what a reset returns to, what modules read.
///
/// The readers of values take no lock and allocate nothing; who may call them is told by the owner of the storage.
class CAudioParamStorage : public CCheckedObject {
public:
    /// Empties the storage and gives it a shape; it has no data until a default or a load.
    void setFormat(const CAudioParamFormat& format);
    [[nodiscard]] const CAudioParamFormat& format() const { return m_format; }

    [[nodiscard]] bool hasData() const { return m_hasData; }
    [[nodiscard]] std::int32_t groupCount() const { return static_cast<std::int32_t>(m_groups.size()); }
    /// Elements of a group, which for a single-group parameter is always group 0; 0 for a group that does not exist.
    [[nodiscard]] std::int32_t elementCount(std::int32_t group) const;
    /// The value that applies to a group and an element. An element that does not exist reads as its default element;
    /// `fallback` where there is no data.
    [[nodiscard]] double value(std::int32_t group, std::int32_t element, std::int32_t component = 0,
                               double fallback = 0.0) const;
    /// The same for an element of a text or byte block parameter; empty where there is none.
    [[nodiscard]] const CString& text(std::int32_t group, std::int32_t element) const;
    [[nodiscard]] std::span<const std::uint8_t> raw(std::int32_t group, std::int32_t element) const;

    /// The cells of exactly that group: elements one after the other, each with all its components.
    [[nodiscard]] std::span<const double> cells(std::int32_t group) const;
    /// The cells of the default elements.
    [[nodiscard]] std::span<const double> defaultCells() const { return m_defaults.span(); }
    /// The cells of the default element that stands for `element`; empty if there are no default elements.
    [[nodiscard]] std::span<const double> defaultElement(std::int32_t element) const;
    [[nodiscard]] const CAudioParamData& data() const { return m_data; }

    /// A record that says all of `group` (an empty one for a group that does not exist), under the number `asGroup`.
    [[nodiscard]] CAudioParamUpdate wholeGroup(std::int32_t group, std::int32_t asGroup) const;

    /// Applies a change; false, with nothing changed, if the record does not fit.
    bool apply(const CAudioParamUpdate& update);
    /// The same with the record's own values, items and room: nothing is allocated as long as the record brings enough
    /// room, and what is replaced goes back into the record.
    bool applyOwned(CAudioParamUpdateRecord& record);

    /// Copies group 0 to the default elements and declares the data valid.
    void adoptDefaults();
    /// Replaces values that are not finite by their default and holds all numbers within the declared bounds.
    void clamp(const CAudioParamInfo& info);

    /// Writes one group, or all of them (-1).
    CErrorPtr save(COutputStream& out, std::int32_t group = -1) const;
    /// Replaces the values, not the default elements; they stay as they were on failure.
    CErrorPtr load(CInputStream& in);
    /// Takes the values of another storage of the same shape over, and keeps the own default elements.
    void takeValues(CAudioParamStorage&& from);

private:
    friend class CAudioParamUpdateRecord;

    using CCells = CArray<double, 2>;

    [[nodiscard]] std::size_t elementSize() const { return static_cast<std::size_t>(m_format.elementSize); }
    [[nodiscard]] double keyAt(std::int32_t group, std::int32_t element) const;
    bool applyWith(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner);
    void takeTemplate(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner);
    void applyCells(const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner);
    void makeGroup(std::size_t group, CAudioParamUpdateRecord* owner);
    static void makeRoom(CCells& cells, std::size_t count, CAudioParamUpdateRecord* owner);
    void fillGap(CCells& cells, std::size_t cellCount);
    void dropItems(std::span<const double> keys, CAudioParamUpdateRecord* owner);
    [[nodiscard]] double takeItem(double key, const CAudioParamUpdate& update, CAudioParamUpdateRecord* owner);
    CErrorPtr saveItems(COutputStream& out, std::int32_t firstGroup, std::int32_t endGroup) const;
    CErrorPtr loadGroup(CInputStream& in, CCells& cells, CAudioParamData& items);

    CAudioParamFormat m_format;
    CArray<CCells, 1> m_groups;
    CCells m_defaults;
    CAudioParamData m_data;
    bool m_hasData = false;
};

} // namespace qrb
