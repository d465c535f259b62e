// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessDefBaseInit.h"

#include <functional>
#include <memory>

namespace qrb {

class CAudioProcessBase;

class CAudioProcessDefBase;

/// A definition that nodes of another one instantiate.
struct CAudioInnerProcess {
    const CAudioProcessDefBase& definition;
    CString name;            ///< of the instance, below the node that makes it
    CString commonName = {}; ///< name that remaps know it under as well, whichever of several stands there; or empty
};

/// How several sources of one channel merge on a port.
enum class EInputCombo { sum, average, maximum };

/// Definition of a process node: the attributes that every kind of node knows. Lives in the shared tree, read-only once
/// built, and outlives every node made of it. Thread: any, then.
class CAudioProcessDefBase : public CAudioProcessDefBaseInit {
public:
    static constexpr int kNoState = -1;

    [[nodiscard]] CErrorPtr init() override;

    /// Makes the plain node of this definition; setup and expansion are instantiateProcess()'s.
    [[nodiscard]] virtual std::unique_ptr<CAudioProcessBase> createProcess() const = 0;
    /// Calls `visit` for every definition that nodes of this one may instantiate.
    virtual void visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const;
    /// The process definition at a path from here; an error where there is none.
    [[nodiscard]] CErrorPtr findProcess(const CString& path, const CAudioProcessDefBase*& out) const;

    [[nodiscard]] const CString& multibandFreqParam() const { return m_multibandFreqParam; }
    [[nodiscard]] const CString& multibandCountParam() const { return m_multibandCountParam; }
    /// Path of the parameter that tells how many instances stand in series; empty for one.
    [[nodiscard]] const CString& stackParam() const { return m_stackParam; }
    [[nodiscard]] bool isStacked() const { return m_isStacked; }
    [[nodiscard]] bool isChannelStack() const { return m_isChannelStack; }
    [[nodiscard]] int stackIndexShift() const { return m_stackIndexShift; }
    [[nodiscard]] bool isMultiband() const { return m_isMultiband; }
    [[nodiscard]] bool isSmoothUpdate() const { return m_isSmoothUpdate; }
    [[nodiscard]] bool isTerminalWhole() const { return m_isTerminalWhole; }
    [[nodiscard]] bool isPrototype() const { return m_isPrototype; }
    [[nodiscard]] bool isOutOfOrder() const { return m_isOutOfOrder; }
    /// The node exists only while this state of its parent does not hold; kNoState for always.
    [[nodiscard]] int bypassStateId() const { return m_bypassStateId; }
    [[nodiscard]] bool isCompInput() const { return m_isCompInput; }
    [[nodiscard]] EInputCombo inputCombo() const { return m_inputCombo; }

private:
    CString m_multibandFreqParam;
    CString m_multibandCountParam;
    CString m_stackParam;
    int m_stackIndexShift = 0;
    int m_bypassStateId = kNoState;
    EInputCombo m_inputCombo = EInputCombo::sum;
    bool m_isStacked = false;
    bool m_isChannelStack = false;
    bool m_isMultiband = false;
    bool m_isSmoothUpdate = false;
    bool m_isTerminalWhole = false;
    bool m_isPrototype = false;
    bool m_isOutOfOrder = false;
    bool m_isCompInput = false;
};

} // namespace qrb
