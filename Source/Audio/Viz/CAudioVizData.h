// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CInputStream;
class COutputStream;

/// What a record carries beside the fields that all have. The numbers are part of the message format.
enum class EAudioVizType : std::int32_t { meter = 0, info = 1, plain = 2, spectrum = 3, vScope = 4, rgb = 5 };

/// One record of visualisation data on its way from the audio thread to an editor. Belongs to one thread at a time.
class CAudioVizData : public CCheckedObject {
public:
    /// Serial of a record that does not come from an export slot.
    static constexpr std::int32_t kNoSlot = -1;

    explicit CAudioVizData(EAudioVizType type = EAudioVizType::plain) : m_type(type) {}

    /// A record of a type as it stands in a message; null for an unknown one.
    [[nodiscard]] static std::unique_ptr<CAudioVizData> create(std::int32_t type);

    /// Writes all fields behind the type, those of the base first.
    virtual CErrorPtr save(COutputStream& out) const;
    /// Reads what save() wrote. Everything stays as it was on failure.
    virtual CErrorPtr load(CInputStream& in);

    [[nodiscard]] EAudioVizType type() const { return m_type; }

    std::int32_t channel = 0; ///< within the source
    std::int32_t group = 0;
    std::int32_t index = 0;        ///< sub-item, such as the band
    double time = 0.0;             ///< stream time in seconds
    std::int32_t serial = kNoSlot; ///< export slot that the record comes through

private:
    friend class CAudioVizList;

    EAudioVizType m_type;
    CAudioVizData* m_next = nullptr;
};

} // namespace qrb
