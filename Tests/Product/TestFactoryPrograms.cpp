// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Product/CProductRig.h"
#include "Tools/Render/CFileHost.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace qrb;

namespace {

struct CProgram {
    const char* name;
    bool isClipped;
    double louder; ///< dB that the name promises
};

constexpr CProgram kPrograms[] = {{"Default", false, 0},
                                  {"Bright Master", false, 0},
                                  {"Lows & Highs Expander", false, 0},
                                  {"Lo-Fi Drums", false, 0},
                                  {"Gate Only", false, 0},
                                  {"1-band Drum Compressor", false, 0},
                                  {"Clipper Maximizer +6dB", true, 6},
                                  {"Puncher-Clipper", true, 0},
                                  {"Puncher-Clipper Snappy", true, 0},
                                  {"Modern Rock Mastering", true, 0},
                                  {"Vintage Compressor", true, 0},
                                  {"Mix Glue", false, 0},
                                  {"Boom Tsa", false, 0},
                                  {"Creamy Drums", false, 0},
                                  {"Nice Vocals", false, 0},
                                  {"News Caster", false, 0},
                                  {"Soft Saturation", false, 0}};
constexpr std::size_t kCount = std::size(kPrograms);

CAudioPreset acquired(CAudioParamRegistry& master, bool isFactory, std::int32_t index)
{
    CWriteSeqBuffer buffer;
    EXPECT_FALSE(master.acquirePreset(isFactory, index, -1, buffer));
    CByteArray bytes;
    buffer.getContiguous(bytes);
    CMemoryReader reader(std::move(bytes));
    CAudioPreset preset;
    EXPECT_FALSE(preset.load(reader));
    return preset;
}

TEST(TestFactoryPrograms, ComeInTheirOrderAndSetWhatTheyHold)
{
    CProductRig rig({});
    rig.start();
    CAudioParamRegistry& master = *rig.instance().paramRegistry();
    CArray<CString> names;
    std::int32_t current = -1;
    master.getPresetNames(true, names, current);
    ASSERT_EQ(names.size(), kCount);
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(kCount); ++i) {
        const auto place = static_cast<std::size_t>(i);
        EXPECT_EQ(names[place], CString("k7rw:") + kPrograms[place].name);
        ASSERT_FALSE(master.setCurrentProgram(i, nullptr));
        const CAudioPreset factory = acquired(master, true, i);
        const CAudioPreset now = acquired(master, false, -1);
        EXPECT_EQ(master.getPresetName(i), names[place]);
        for (const auto& [key, bytes] : factory.items) {
            const auto found = now.items.find(key);
            ASSERT_NE(found, now.items.end()) << key.toUtf8() << " is no parameter";
            EXPECT_TRUE(std::ranges::equal(found->second, bytes)) << names[place].toUtf8() << ": " << key.toUtf8();
        }
    }
}

TEST(TestFactoryPrograms, KeepTheLevelThatTheyPromise)
{
    std::string error;
    const render::CProductModule module(error);
    ASSERT_TRUE(module.isEntered()) << error;
    for (const CProgram& program : kPrograms) {
        render::CHostOptions options;
        options.inFile = THUMPCRAFT_EXAMPLES "/drum-loop.flac";
        options.presetName = program.name;
        render::CFileHost host(options);
        ASSERT_TRUE(host.open(error) && host.prepare(true, error)) << error;
        double in = 0.0;
        double out = 0.0;
        double peak = 0.0;
        std::vector<double> block;
        for (std::uint64_t played = 0; played < host.file().frames(); played += options.blockSize) {
            host.playBlock(options.blockSize);
            host.runOwner();
            host.output(block, options.blockSize);
            for (const double sample : host.input())
                in += sample * sample;
            for (const double sample : block) {
                out += sample * sample;
                peak = std::max(peak, std::abs(sample));
            }
        }
        const double louder = 10.0 * std::log10(out / in);
        EXPECT_NEAR(louder, program.louder, program.louder > 0.0 ? 1.0 : 3.0) << program.name;
        EXPECT_LT(peak, program.isClipped ? 1.0 : 1.1) << program.name;
    }
}

} // namespace
