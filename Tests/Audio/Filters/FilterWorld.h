// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/AudioCreators.h"
#include "Audio/Filters/CAudioFilterGen.h"
#include "Audio/Filters/CFilterBank.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace qrb {

constexpr double kSampleRates[] = {44100, 48000, 88200, 96000, 176400, 192000, 352800, 384000};

/// Designers as a document declares them.
inline const std::string kFilterDocument = [] {
    std::string xml = "<root>";
    for (int type = 0; type < 11; ++type)
        for (const char* law : {"", "is-q", "is-type2"})
            xml += "<audio:fltgen-rbj name='rbj" + std::to_string(type) + law + "' type='" + std::to_string(type) +
                   "' " + (*law != 0 ? std::string(law) + "='true'" : "") + "/>";
    for (int type = 0; type < 6; ++type)
        xml += "<audio:fltgen-magnus name='magnus" + std::to_string(type) + "' type='" + std::to_string(type) + "'/>";
    return xml + R"(
        <audio:fltgen-rbj name="lpi" type="0" is-inverted="true" is-gain-q="true"/>
        <audio:fltgen-bypass name="bypass"/>
        <audio:fltgen-lphp1 name="lp1" type="0"/>
        <audio:fltgen-lphp1 name="hp1" type="1"/>
        <audio:fltgen-lphp1 name="hp1g" type="2"/>
        <audio:fltgen-serial name="lp1b">
          <audio:fltgen-serial-item name="i0" fltgen="lp1" adjust="1.55380476"/>
          <audio:fltgen-serial-item name="i1" fltgen="lp1" adjust="1.55380476"/>
        </audio:fltgen-serial>
        <audio:fltgen-serial name="hp1b">
          <audio:fltgen-serial-item name="i0" fltgen="hp1" adjust="0.6435815012"/>
          <audio:fltgen-serial-item name="i1" fltgen="hp1" adjust="0.6435815012"/>
        </audio:fltgen-serial>
        <audio:fltgen-serial name="fixed">
          <audio:fltgen-serial-item name="i0" fltgen="magnus1" adjust="1.0,1.0,0.924825"/>
        </audio:fltgen-serial>
        <audio:fltgen-serial name="root2"><audio:fltgen-serial-item name="i0" fltgen="rbj6" adjust=" 1, 2" adjust-pow="1,0.5"/></audio:fltgen-serial>
        <audio:fltgen-hbf name="hbf106t20" a="0.0358327884310621,0.27204014339645771,0.57205719723570025,0.82712476199732377"
                          b="0.13409014194306693,0.42432487127186835,0.70629214213863922,0.94150309417375522"/>
        <audio:fltgen-hbf name="hbf62t4" a="0.13802499407302135" b="0.58468325748732319"/>
        <audio:fltgen-firlp name="firlp"/>
        <audio:fltgen-array name="array">
          <audio:fltgen-array-item name="i0" fltgen="bypass" index="0"/>
          <audio:fltgen-array-item name="i1" fltgen="rbj6" index="1"/>
          <audio:fltgen-array-item name="i3" fltgen="lp1" index="3"/>
        </audio:fltgen-array>
    </root>)";
}();

class FilterTest : public ::testing::Test {
protected:
    const CAudioFilterGen& gen(const std::string& name) { return m_module.shared<CAudioFilterGen>(name.c_str()); }

    static CAudioFilterParams params(double frequency, double gain, double bandwidth)
    {
        CAudioFilterParams made;
        made.set("freq", frequency);
        made.set("gain", gain);
        made.set("bw", bandwidth);
        return made;
    }
    CAudioFilterStageList design(const std::string& name, double sampleRate, const CAudioFilterParams& values)
    {
        CAudioFilterStageList list;
        gen(name).design(list, sampleRate, values, nullptr);
        return list;
    }
    static std::vector<double> noise(std::size_t length, unsigned seed)
    {
        std::mt19937 generator(seed);
        std::uniform_real_distribution<double> uniform(-1.0, 1.0);
        std::vector<double> samples(length);
        for (double& sample : samples)
            sample = uniform(generator);
        return samples;
    }

    CTestModule m_module{kFilterDocument, audioCreators()};
};

} // namespace qrb
