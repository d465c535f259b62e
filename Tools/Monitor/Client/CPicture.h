// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace monitor {

/// All that is shown at one moment, ready to be written down. Texts are UTF-8 without control characters; levels are dB.
struct CPicture {
    enum class EMeter {
        level,    ///< up to full scale and above
        change,   ///< around 0
        reduction ///< falls from 0
    };
    struct CMeter {
        std::string line; ///< number of the channel, and of the band behind a "/"
        double value = 0.0;
        double peak = 0.0;
    };
    struct CMeters {
        const char* name = "";
        EMeter kind = EMeter::level;
        std::vector<CMeter> lines;
    };
    struct CControl {
        std::string name;
        std::string value;
        bool isSelected = false;
    };

    // Told by who plays.
    std::string title;
    int frame = 0;
    double seconds = 0.0; ///< played so far

    std::string preset;
    int program = -1;
    int programCount = 0;
    char side = 'A'; ///< which of two states is heard
    double sampleRate = 0.0;
    int inputs = 0;
    int outputs = 0;
    int keys = 0;
    std::string group; ///< whose settings are shown
    int band = 0;      ///< likewise, from 0
    std::vector<CMeters> meters;
    std::vector<double> octaves;  ///< of the spectrum; empty while there is none
    std::vector<double> spectrum; ///< the same in thirds of octaves
    std::vector<CControl> controls;
    std::vector<std::string> history; ///< the first line stands for no gesture at all
    int historyPosition = 0;          ///< the line up to which the gestures are in force
};

} // namespace monitor
