// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <public.sdk/source/vst/vstparameters.h>

namespace qrb {

class CAudioParamRegistry;

/// Selects the program.
class CAudioWrapperVST3ProgramParameter final : public Steinberg::Vst::Parameter {
public:
    static constexpr Steinberg::Vst::UnitID kProgramListId = 999;

    /// The registry stays alive as long as the parameter.
    CAudioWrapperVST3ProgramParameter(CAudioParamRegistry& registry, Steinberg::Vst::ParamID id);

    /// Selects the program as well. Thread: the owner's.
    bool setNormalized(Steinberg::Vst::ParamValue value) override;
    void toString(Steinberg::Vst::ParamValue value, Steinberg::Vst::String128 text) const override;
    bool fromString(const Steinberg::Vst::TChar* text, Steinberg::Vst::ParamValue& value) const override;
    Steinberg::Vst::ParamValue toPlain(Steinberg::Vst::ParamValue value) const override;
    Steinberg::Vst::ParamValue toNormalized(Steinberg::Vst::ParamValue plain) const override;
    /// Takes over what is selected already.
    void showCurrent();

private:
    [[nodiscard]] double lastIndex() const;
    [[nodiscard]] int indexOf(Steinberg::Vst::ParamValue value) const;

    CAudioParamRegistry& m_registry;
};

} // namespace qrb
