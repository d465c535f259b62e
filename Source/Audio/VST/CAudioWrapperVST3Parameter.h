// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <public.sdk/source/vst/vstparameters.h>

#include <atomic>

namespace qrb {

class CAudioExtParam;

/// One parameter of the instance as the host's controller sees it.
class CAudioWrapperVST3Parameter final : public Steinberg::Vst::Parameter {
public:
    /// Both stay alive as long as the parameter. While the host processes, values of the controller stay here: the same
    /// automation comes with the audio, at its sample.
    CAudioWrapperVST3Parameter(CAudioExtParam& param, const std::atomic<bool>& isProcessing);

    bool setNormalized(Steinberg::Vst::ParamValue value) override;
    void toString(Steinberg::Vst::ParamValue value, Steinberg::Vst::String128 text) const override;
    bool fromString(const Steinberg::Vst::TChar* text, Steinberg::Vst::ParamValue& value) const override;
    /// Takes over a value that the instance has already.
    void show(Steinberg::Vst::ParamValue value) { Parameter::setNormalized(value); }

private:
    CAudioExtParam& m_param;
    const std::atomic<bool>& m_isProcessing;
};

} // namespace qrb
