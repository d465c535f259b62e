// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/AudioCreators.h"
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace qrb {

/// A shared tree with definitions of every kind, and instances with an environment and a collector.
class AudioParamWorld {
public:
    static constexpr const char* kShared = R"(<root>
        <core:object name="cvt"><audio:cvt-real name="real" decimals="2"/><audio:cvt-text name="text"/>
            <audio:cvt-gain name="gain" decimals="1"/></core:object>
        <core:object name="def">
            <audio:param name="list" element-size="1" converter="cvt.real" min-values="-10" max-values="10"
                def-values="1,2,3;4" is-storable="true" visual-name="List" state-names="Lo-shelf|Lo-shlf;Maximum"/>
            <audio:param name="pair" element-size="2" converter="cvt.real" converter2="cvt.real" min-values="0 10"
                max-values="9 -10" def-values="1 2,3 4"/>
            <audio:param name="one" element-size="1" converter="cvt.real" min-values="0" max-values="1"
                def-values="0.5" is-single-group="true" is-single-element="true" is-persistent="true"
                is-storable="true"/>
            <audio:param name="text" element-size="1" data-type="string" converter="cvt.text"
                def-values="L,R,IN3"/>
            <audio:param name="raw" element-size="1" data-type="raw" converter="cvt.text" def-values="x"/>
        </core:object></root>)";

    explicit AudioParamWorld(platform::IFolders* folders = nullptr)
        : module(kShared, CTestModuleOptions{{audioCreators()}, folders}), root(newInstance()),
          collector(paramsOf(root)), env(collector.env())
    {
    }

    [[nodiscard]] CObject& newInstance()
    {
        return module.loadRoot(
            R"(<root><audio:audio-env name="env"/><audio:param-collector name="params" env="env"/></root>)");
    }
    [[nodiscard]] static CAudioParamCollector& paramsOf(CObject& instance)
    {
        return dynamic_cast<CAudioParamCollector&>(CTestModule::find(instance, "params"));
    }
    [[nodiscard]] const CAudioParamInfo& info(const char* name) const
    {
        return module.shared<CAudioParamDef>((std::string("def.") + name).c_str()).info();
    }
    /// A parameter bound to the definition of that name, with its defaults on the audio side.
    [[nodiscard]] CAudioParam& bound(const char* name)
    {
        CAudioParam& param = collector.getParam(name);
        param.bindInfo(info(name));
        collector.flushQueue();
        return param;
    }

    CTestModule module;
    CObject& root;
    CAudioParamCollector& collector;
    CAudioEnv& env;
};

/// A record that keeps its values.
struct AudioParamRecord {
    AudioParamRecord(const CAudioParamFormat& format, std::int32_t group, std::int32_t first,
                     std::vector<double> numbers, bool isToEnd = false)
        : values(std::move(numbers))
    {
        update.group = group;
        update.firstElement = first;
        update.elementCount = static_cast<std::int32_t>(values.size()) / format.elementSize;
        update.isToEnd = isToEnd;
        update.format = format;
        update.values = values.data();
    }
    AudioParamRecord(const AudioParamRecord&) = delete;

    std::vector<double> values;
    CAudioParamUpdate update;
};

[[nodiscard]] inline std::vector<double> numbers(std::span<const double> cells)
{
    return {cells.begin(), cells.end()};
}

/// The texts of a group, joined with "|".
[[nodiscard]] inline std::string texts(const CAudioParamStorage& storage, std::int32_t group)
{
    std::string joined;
    for (const double key : storage.cells(group))
        joined += storage.data().text(static_cast<std::int32_t>(key)).toUtf8() + "|";
    return joined;
}

template <typename... Args>
[[nodiscard]] std::vector<std::uint8_t> bytesOf(const auto& what, Args... args)
{
    CWriteSeqBuffer out;
    EXPECT_FALSE(what.save(out, args...));
    CByteArray bytes;
    out.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

/// Little-endian bytes, written as a table of fields: int for 32 bits, double, or text.
class Bytes {
public:
    Bytes& operator<<(int value)
    {
        for (int i = 0; i < 4; ++i)
            data.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> (8 * i)));
        return *this;
    }
    Bytes& operator<<(double value)
    {
        const auto* const raw = reinterpret_cast<const std::uint8_t*>(&value);
        data.insert(data.end(), raw, raw + sizeof value);
        return *this;
    }
    Bytes& operator<<(const char* text)
    {
        *this << static_cast<int>(std::string(text).size());
        data.insert(data.end(), text, text + std::string(text).size());
        return *this;
    }

    std::vector<std::uint8_t> data;
};

} // namespace qrb
