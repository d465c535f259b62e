// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Core/CArray.h"

#include <memory>

namespace qrb {

/// Node that runs other nodes. What they link to its output comes out of it line by line: lines of one channel meet
/// at the consumer, which sums them.
class CAudioProcessComposite : public CAudioProcessBase {
public:
    void reset() override;
    /// Hands the input lines to the inner nodes, which the plan runs.
    void processPlanned() override;

    /// Nodes in the order they run.
    [[nodiscard]] std::span<CAudioProcessBase* const> sequence() const { return m_sequence.span(); }

    /// Where inner nodes link to the output of this node; the port of a line there is the output port.
    [[nodiscard]] CAudioLineSink& innerOutput() { return m_innerOutput; }
    /// Where inner nodes get the input lines from.
    [[nodiscard]] virtual CArray<CAudioLineSource*, 8> innerSources();
    /// A line that an inner source sends.
    struct CInnerLine {
        CAudioLineSource* source = nullptr;
        int index = 0;
    };
    /// What becomes of an input line of this node; no source where it goes nowhere.
    [[nodiscard]] virtual CInnerLine innerLine(const CAudioLine& line);

protected:
    [[nodiscard]] CArray<CAudioProcessBase*>& sequenceStore() { return m_sequence; }
    /// Where inner nodes get the input of this node from, each line under its port.
    [[nodiscard]] CAudioLineSource& innerInput() { return m_innerInput; }
    /// In update(), when the configuration changed: announces the input lines to the inner nodes.
    void announceInner();
    /// A node inside this one, in its group. Null, with a line in the log, if it cannot be made.
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> makeInner(const CAudioProcessDefBase& innerDefinition,
                                                               const CString& name, int element,
                                                               EExpansion expansion = EExpansion::all);
    /// Hands the input lines to the inner nodes and runs them.
    void processLines() override;
    /// Any: the inner nodes have their say.
    [[nodiscard]] bool takesForm(ESampleForm form) const override;
    /// Hands the gathered input lines to the inner nodes.
    virtual void sendInner();
    /// Runs the sequence, then hands on what reached the output.
    void runSequence();

private:
    void announceOutput();

    CAudioLineSource m_innerInput;
    CArray<CAudioLineInfo> m_innerLines;
    CAudioLineSink m_innerOutput;
    CArray<CAudioProcessBase*> m_sequence;
    CArray<CAudioLineInfo> m_announced;
};

} // namespace qrb
