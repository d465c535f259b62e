// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CError.h"
#include "Core/CString.h"

#include <array>
#include <cstdint>
#include <optional>

namespace qrb {

class CObject;

/// What the product declares about itself in its project object, checked.
struct CPluginProject {
    static constexpr int kMaxInternalChannels = 16;
    static constexpr int kMaxGroups = 8;
    static constexpr double kFallbackTailSeconds = 0.4;

    CString name;
    CString vendor;
    std::array<int, 3> version{}; ///< a missing third number is 0
    std::uint32_t code = 0;       ///< four characters, the first one highest
    int internalChannelCount = 1;
    int groupCount = 1;
    std::optional<double> tailSeconds; ///< none: no tail is reported
    int autoOversamplingMode = 0;      ///< mode while the host runs in real time, plus 1
    bool useHostBPM = false;
    bool useHostRecording = false;
    bool useSidechain = false;
    bool useRouting = false;
    bool useMidSide = false;
    bool useWindowResizing = false;
    bool isSymmetricIO = false;      ///< as many outputs as inputs
    std::int32_t minWindowWidth = 0; ///< at a scale of 1; 0 for none
    std::int32_t minWindowHeight = 0;
    bool isVizAlwaysActive = false; ///< visualisation goes on while the plug-in is stopped

    /// Replaces everything; on failure the content is undefined.
    CErrorPtr read(const CObject& project);

private:
    CErrorPtr parseVersion(const CString& text);
    CErrorPtr parseCode(const CString& text);
    void parseTail(const CString& text);
};

} // namespace qrb
