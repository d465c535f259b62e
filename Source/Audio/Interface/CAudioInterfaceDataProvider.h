// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"

#include <cstdint>

namespace qrb {

class CAudioParam;

/// What an interface base asks the instance that it belongs to. Thread: any; no parameter is held in a call.
class CAudioInterfaceDataProvider : public CCheckedObject {
public:
    [[nodiscard]] virtual std::int32_t getInternalChannelCount() = 0;
    [[nodiscard]] virtual std::int32_t getGroupCount() = 0;
    [[nodiscard]] virtual std::int32_t getInputChannelCount() = 0;
    [[nodiscard]] virtual std::int32_t getOutputChannelCount() = 0;
    [[nodiscard]] virtual std::int32_t getSidechainChannelCount() = 0;
    /// Samples a second.
    [[nodiscard]] virtual double getSampleRate() = 0;
    /// A user begins to change an element, and ends it: what a host records as one gesture. They come in pairs.
    virtual void onBeginChange(CAudioParam& param, std::int32_t group, std::int32_t element) = 0;
    virtual void onEndChange(CAudioParam& param, std::int32_t group, std::int32_t element) = 0;
    /// Takes the names of channels from the host.
    virtual void importChannelLabels() = 0;
};

} // namespace qrb
