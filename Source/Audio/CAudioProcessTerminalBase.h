// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioModuleInstance.h"
#include "Audio/CAudioModulePool.h"
#include "Audio/CAudioProcessBase.h"

#include <memory>

namespace qrb {

/// Node whose work is done by modules: one a line of port 0, or one for all lines.
class CAudioProcessTerminalBase : public CAudioProcessBase {
public:
    ~CAudioProcessTerminalBase() override;

    [[nodiscard]] CErrorPtr init() override;
    void reset() override;
    void update() override;
    void processPlanned() override;
    [[nodiscard]] const CAudioLine* passedLine(int outputLine) override;

    /// A new module of the node's kind.
    [[nodiscard]] virtual std::unique_ptr<CAudioModule> createModule() = 0;

    /// Its modules can run in one go with those of other nodes of the definition.
    [[nodiscard]] bool canRunTogether() const;
    /// Runs one block of a plan for several terminals of one definition that do not wait for each other.
    static void processTogether(std::span<CAudioProcessBase* const> nodes);
    /// Its modules' kind runs in series with others of its kind.
    [[nodiscard]] bool canRunInSeries() const;
    /// Whether this terminal's lines are just those that another one sends, in the same order.
    [[nodiscard]] bool isFedBy(const CAudioProcessTerminalBase& other);
    /// Runs one block of a plan for terminals of one definition of which each feeds the next one alone.
    static void processInSeries(std::span<CAudioProcessBase* const> nodes);

    /// Whether running this node in pieces beside one behind it pays.
    [[nodiscard]] bool canOverlap(const CAudioProcessTerminalBase& behind) const;
    /// Runs one block of a plan for terminals in a row, the first one beside the last one.
    static void processInPieces(std::span<CAudioProcessBase* const> nodes);
    [[nodiscard]] std::span<const std::unique_ptr<CAudioModuleInstance>> instances() const
    {
        return m_instances.span();
    }

    /// Samples of a module crossfade.
    [[nodiscard]] int fadeLength() const { return m_fadeLength; }
    /// Size of a module's table of touched parameters.
    [[nodiscard]] int moduleParamCount() const { return allocCount(); }

protected:
    void processLines() override;
    [[nodiscard]] bool takesForm(ESampleForm form) const override;

private:
    [[nodiscard]] bool isFading() const;
    [[nodiscard]] static bool runInSeries(std::span<CAudioProcessBase* const> nodes);
    void runPlanned(CAudioModuleInstance& instance, int& line);
    void sendSettled(std::span<CSampleBuffer> outputs, int& line);
    void sendOutputs(CAudioModuleInstance& instance, int& line);
    void configureInstances();
    void touchChangedParams();
    void announceLines();
    [[nodiscard]] bool isSmooth(int group, bool isEverythingTouched, bool hasTouched);
    [[nodiscard]] static bool isTouched(const CAudioBoundParam& param, int group);

    CAudioModulePool m_modules;
    CArray<std::unique_ptr<CAudioModuleInstance>, 2> m_instances;
    CArray<CAudioLineInfo, 4> m_announced;
    double m_fadeSeconds = 0.0;
    int m_fadeLength = 1;
};

} // namespace qrb
