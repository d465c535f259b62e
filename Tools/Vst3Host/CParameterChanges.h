// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/ivstparameterchanges.h>

#include <span>
#include <vector>

namespace vst3 {

/// A point of automation: parameter, sample of the block, normalised value.
struct CPoint {
    Steinberg::Vst::ParamID id;
    Steinberg::int32 offset;
    double value;
};

/// The points of one block for the plug-in to read, a queue a parameter.
class CParameterChanges final : public Steinberg::Vst::IParameterChanges {
public:
    explicit CParameterChanges(std::span<const CPoint> points);
    virtual ~CParameterChanges() = default;

    Steinberg::int32 PLUGIN_API getParameterCount() override;
    Steinberg::Vst::IParamValueQueue* PLUGIN_API getParameterData(Steinberg::int32 index) override;
    Steinberg::Vst::IParamValueQueue* PLUGIN_API addParameterData(const Steinberg::Vst::ParamID&,
                                                                  Steinberg::int32&) override
    {
        return nullptr;
    }
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID, void** out) override
    {
        return *out = nullptr, Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; } // its host outlives all references
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    class CQueue final : public Steinberg::Vst::IParamValueQueue {
    public:
        explicit CQueue(Steinberg::Vst::ParamID id) : m_id(id) {}
        virtual ~CQueue() = default;

        Steinberg::Vst::ParamID PLUGIN_API getParameterId() override { return m_id; }
        Steinberg::int32 PLUGIN_API getPointCount() override { return static_cast<Steinberg::int32>(points.size()); }
        Steinberg::tresult PLUGIN_API getPoint(Steinberg::int32 index, Steinberg::int32& offset,
                                               Steinberg::Vst::ParamValue& value) override;
        Steinberg::tresult PLUGIN_API addPoint(Steinberg::int32, Steinberg::Vst::ParamValue, Steinberg::int32&) override
        {
            return Steinberg::kResultFalse;
        }
        Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID, void** out) override
        {
            return *out = nullptr, Steinberg::kNoInterface;
        }
        Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
        Steinberg::uint32 PLUGIN_API release() override { return 1; }

        std::vector<CPoint> points;

    private:
        Steinberg::Vst::ParamID m_id;
    };

    std::vector<CQueue> m_queues;
};

} // namespace vst3
