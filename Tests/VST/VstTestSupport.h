// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

using vst3::CChannels;
using vst3::CPoint;

/// The product's module, or a copy of it.
class CModuleFile : public vst3::CModuleFile {
public:
    explicit CModuleFile(const std::string& path = THUMPCRAFT_MODULE, std::string error = {})
        : vst3::CModuleFile(path, error)
    {
        EXPECT_EQ(error, "");
    }
    static bool isLoaded() { return vst3::CModuleFile::isLoaded(THUMPCRAFT_MODULE); }
};

/// Tells what was refused.
class CVstHost : public vst3::CVstHost {
public:
    using vst3::CVstHost::CVstHost;
    ~CVstHost() { EXPECT_EQ(failure(), ""); }
};

/// Noise that single precision holds exactly, between -0.5 and 0.5.
[[nodiscard]] CChannels makeNoise(std::size_t channels, std::size_t frames, std::uint32_t seed = 1);
[[nodiscard]] double energyOf(const CChannels& channels);
