// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioModule.h"
#include "Audio/CAudioModulePool.h"
#include "Audio/CFadeOscillator.h"
#include "Core/CArray.h"

#include <cstdint>
#include <memory>
#include <span>
#include <utility>

namespace qrb {

class CAudioProcessTerminalBase;

/// One place in a terminal: the module that serves a line (or all lines), and the one it fades out of.
///
/// A change that is smooth makes a second module with the new settings and crosses over to it. A change during a fade
/// waits for the fade's last sample, wherever in a block that is; several that wait make one further fade.
class CAudioModuleInstance : public CCheckedObject {
public:
    static constexpr int kAllLines = -1;

    CAudioModuleInstance(CAudioProcessTerminalBase& node, CAudioModulePool& modules);
    ~CAudioModuleInstance() override;

    [[nodiscard]] int channel() const { return m_channel; }
    [[nodiscard]] int group() const { return m_group; }
    [[nodiscard]] int latency() const { return m_active->latency(); }
    /// True once after the latency has become another, by an update or by a fade that started.
    [[nodiscard]] bool takeLatencyChange() { return std::exchange(m_announcedLatency, latency()) != latency(); }
    [[nodiscard]] bool hasLatencyChange() const { return m_announcedLatency != latency(); }
    [[nodiscard]] int outputCount() const { return m_active->outputCount(); }
    [[nodiscard]] bool isFading() const { return m_fading != nullptr; }

    /// New configuration: ends fades, gives the module the lines of a channel, or kAllLines, and starts it.
    /// Module state survives where lines and sample rate are what they were.
    void configure(int channel);
    /// Clears the module's signal state; the next update applies at once.
    void reset();
    /// Marks a parameter as changed.
    void touch(int allocIndex);
    void touchAll();
    [[nodiscard]] bool isDirty() const { return m_active->m_isDirty != 0; }
    /// Applies what was touched: through a fade, or at once where `isSmooth` is not set or nothing has sounded yet.
    void applyUpdate(bool isSmooth, int fadeLength);

    /// Fades mix whole blocks.
    [[nodiscard]] bool takesForm(ESampleForm form) const { return !isFading() && m_active->takesForm(form); }
    /// Runs a block and leaves the outputs in outputs().
    void process(int blockLength, int fadeLength);
    [[nodiscard]] bool canRunTogether() const { return m_active->canRunTogether(); }
    [[nodiscard]] bool canRunInSeries() const { return m_active->canRunInSeries(); }
    /// The module, ready for CAudioModule::processTogether() or processInSeries(). Not while it fades.
    [[nodiscard]] CAudioModule& beginTogether(int blockLength);
    [[nodiscard]] std::span<CSampleBuffer> outputs() { return m_outputs.span(); }
    void releaseOutputs();
    /// Runs a block without leaving it in outputs(): its buffers are to be moved from what this gives. Not while it fades.
    [[nodiscard]] std::span<CSampleBuffer> runSettled(int blockLength);
    /// The same for a block that ran between beginTogether() and now.
    [[nodiscard]] std::span<CSampleBuffer> endSettled();
    /// beginTogether() for a piece of a block: writes to the whole outputs, from `start` on. Valid until endPieces().
    [[nodiscard]] CAudioModule& beginPiece(int length, CSampleBuffer* wholeOutputs, int start);
    void endPieces();
    [[nodiscard]] bool canOverlap(const CAudioModuleInstance& waiting) const
    {
        return m_active->canOverlap(*waiting.m_active);
    }
    /// The input line that is output `index`, by reference, until the next update; or null.
    [[nodiscard]] const CAudioLine* passedLine(int index) const;
    /// True once after passedLine() has come to give other lines.
    [[nodiscard]] bool takePassingChange() { return std::exchange(m_announcedPort, passedPort()) != passedPort(); }

private:
    /// Gives a module the lines of m_channel; true if they, or the sample rate, are others than it had.
    [[nodiscard]] bool giveLines(CAudioModule& module) const;
    void startModule(CAudioModule& module);
    void updateNow(CAudioModule& module);
    void startFade(int fadeLength);
    void endFade();
    void runSegment(int length, int fadeLength);
    void runSplit(int blockLength, int fadeLength);
    void runModule(CAudioModule& module, int length) const;
    void fillOutputs(CAudioModule& module, int length) const;
    void takeOutputs();
    [[nodiscard]] int passedPort() const { return isFading() ? CAudioModule::kNoPort : m_active->passedPort(); }
    [[nodiscard]] CSampleBuffer mix(std::size_t output, int length, int hold, int fade);
    /// The next fade starts within a block of this length, so that it has to be cut there.
    [[nodiscard]] bool isCutNeeded(int blockLength) const
    {
        return isFading() && m_isFadePending && m_holdLeft + m_fadeLeft < blockLength;
    }

    CAudioProcessTerminalBase& m_node;
    CAudioModulePool& m_modules;
    std::unique_ptr<CAudioModule> m_active;
    std::unique_ptr<CAudioModule> m_fading;
    CArray<CFadeOscillator, 2> m_oscillators;
    CArray<CSampleBuffer, 2> m_outputs;
    std::uint32_t m_nextSeed; ///< counted here, since fades of several nodes start in one block at different samples
    int m_channel = kAllLines;
    int m_group = 0;
    int m_announcedLatency = 0;
    int m_announcedPort = CAudioModule::kNoPort;
    int m_holdLeft = 0;
    int m_fadeLeft = 0;
    bool m_isFadePending = false;
};

} // namespace qrb
