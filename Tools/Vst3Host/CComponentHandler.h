// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/ivsteditcontroller.h>

#include <vector>

namespace vst3 {

/// What a plug-in tells its host, kept for whoever asks. Its host outlives all references.
class CComponentHandler final : public Steinberg::Vst::IComponentHandler {
public:
    virtual ~CComponentHandler() = default;

    Steinberg::tresult PLUGIN_API beginEdit(Steinberg::Vst::ParamID) override { return ++edits, Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API performEdit(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue) override
    {
        return ++edits, Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API endEdit(Steinberg::Vst::ParamID) override { return ++edits, Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32 flags) override
    {
        restarts.push_back(flags);
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID, void** out) override
    {
        return *out = nullptr, Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

    int edits = 0;
    std::vector<Steinberg::int32> restarts; ///< flags
};

} // namespace vst3
