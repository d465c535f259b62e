// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Monitor/Client/CClientTree.h"
#include "Tools/Monitor/Client/CMeterBank.h"
#include "Tools/Monitor/Client/CParamView.h"
#include "Tools/Monitor/Client/CPicture.h"
#include "Tools/Monitor/Client/CProgramView.h"
#include "Tools/Monitor/Client/CSpectrumView.h"

#include <cstddef>
#include <deque>
#include <string>

namespace monitor {

/// Watches an instance and changes it on request, all through a client of its interface. Belongs to one thread, that of
/// the client's tree, which outlives it.
class CMonitor {
public:
    /// Keys with what they do, a line each, for helps.
    static const char* keyHelp();

    explicit CMonitor(CClientTree& tree);

    /// Does what a key stands for; unknown ones do nothing. False for the key that ends it all.
    [[nodiscard]] bool press(char key);
    [[nodiscard]] CPicture picture() const;

private:
    /// One of the settings that keys change.
    struct CControl {
        CControl(CClientTree& tree, const char* path, const char* givenTitle, bool belongsToBand, int steps)
            : view(tree.client(), path, steps), title(givenTitle), isOfBand(belongsToBand)
        {
        }
        CParamView view;
        const char* title; ///< where the product has given no name
        bool isOfBand;
    };

    void addControls();
    [[nodiscard]] std::string nameOf(const CControl& control) const;
    [[nodiscard]] int elementOf(const CControl& control) const { return control.isOfBand ? m_band : 0; }
    void move(int steps);
    void select(int count);
    void swapSides();
    void moveInHistory(int count);

    CClientTree& m_tree;
    std::deque<CControl> m_controls;
    CParamView m_presetName;
    CParamView m_side;
    CParamView m_bandCount;
    CProgramView m_programs;
    CMeterBank m_bandsIn;
    CMeterBank m_out;
    CMeterBank m_ratio;
    CMeterBank m_gate;
    CMeterBank m_compressor;
    CSpectrumView m_spectrum;
    std::size_t m_selected = 0;
    int m_group = 0;
    int m_band = 0;
    int m_tag = 0; ///< moves of one control in a row are one gesture
};

} // namespace monitor
