// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBoundParam.h"
#include "Audio/CAudioLineSink.h"
#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessPort.h"
#include "Audio/CAudioProcessSetup.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qrb {

/// Node of the process graph, made from a definition for one plug-in instance. Not a CObject; whoever made it owns it.
///
/// Lines come in at ports and go out through `output()`. A block runs as: input step (lines, latency, `update`,
/// buffers), then `processLines`, then the input buffers are released. Thread: the instance's audio thread, or while
/// nothing runs.
class CAudioProcessBase : public CCheckedObject {
public:
    static constexpr int kMaxPorts = 32;

    CAudioProcessBase();
    CAudioProcessBase(const CAudioProcessBase&) = delete;
    CAudioProcessBase& operator=(const CAudioProcessBase&) = delete;
    ~CAudioProcessBase() override;

    /// Once, after parameters are bound and `onCreated` has run.
    [[nodiscard]] virtual CErrorPtr init();
    /// Forgets signals: what is held of the inputs, the delays that align them, fades.
    virtual void reset();
    /// Runs at the start of each block. Nodes look at isConfigurationChanged() and takeParamChanges() here.
    virtual void update();
    /// Runs one block: the input step, processLines(), releaseInputs().
    virtual void process();
    /// Runs one block of a plan: the same without looking for changes, and without the nodes inside this one.
    virtual void processPlanned();
    /// Removes all links into this node.
    virtual void disconnectAll();
    /// Once, before `init`.
    virtual void onCreated();

    /// Brings the node to life: takes the setup over, enters remaps, binds parameters, then `onCreated` and `init`.
    /// Called by instantiateProcess() alone.
    [[nodiscard]] CErrorPtr setUp(const CAudioProcessSetup& setup);

    [[nodiscard]] const CString& fullName() const { return m_name; }
    [[nodiscard]] const CAudioProcessDefBase& definition() const { return *m_definition; }
    [[nodiscard]] const CAudioProcessContext& context() const { return m_context; }
    [[nodiscard]] CSampleBufferPool& pool() const { return *m_context.pool; }
    /// Channel group this node belongs to, or -1.
    [[nodiscard]] int groupIndex() const { return m_groupIndex; }
    [[nodiscard]] int elementIndex() const { return m_elementIndex; }
    /// Hertz at the input; 1.0 before the first line arrives.
    [[nodiscard]] double sampleRate() const { return m_sampleRate; }
    /// Samples: the highest latency among the input lines.
    [[nodiscard]] int inputLatency() const { return m_inputLatency; }
    /// Samples of the running block, at the input's rate.
    [[nodiscard]] int blockLength() const { return m_blockLength; }

    [[nodiscard]] int portCount() const { return static_cast<int>(m_ports.size()); }
    /// Lines of an input port; none for a port that has never been linked to.
    [[nodiscard]] std::span<CAudioLine> lines(int port = 0);

    [[nodiscard]] CAudioLineSink& input() { return m_input; }
    [[nodiscard]] CAudioLineSource& output() { return m_output; }
    [[nodiscard]] const CAudioLineSource& output() const { return m_output; }

    /// The first part of processPlanned(): gathers the input buffers.
    void runPlannedInputStep();
    /// The same for a block that runs in pieces: leaves the buffers in `inputs`, line by line, and where none has come
    /// yet an empty one, for a line that will get its pieces one by one.
    void takeWholeBlock(int length, CArray<CSampleBuffer, 4>& inputs);
    /// Makes a piece of that block the running one.
    void takePiece(std::span<const CSampleBuffer> inputs, int start, int length);
    /// Gives the input buffers of a planned block up.
    void releasePlannedInputs();
    /// Notes for the plan which input lines there are, and lets blocks come straight into those that it may.
    void planInputs();
    /// Whether blocks can come straight into the line: it has one source, which is not delayed.
    [[nodiscard]] static bool isAsItComes(const CAudioLine& line);
    /// The input line that an output line is, by reference, until lines or links change or a structure change is noted;
    /// null where the node has something to do for it.
    [[nodiscard]] virtual const CAudioLine* passedLine(int outputLine);
    /// The first part of process(): settles lines and latency, runs update(), gathers the input buffers.
    void runInputStep();
    /// Gives the input buffers of the block up.
    void releaseInputs();

    /// The parameter allocated under `index`; a missing one is logged and reads as `unbound` for ever.
    [[nodiscard]] CAudioParamSlot regParam(int index, double unbound) const;
    /// The flag will be set after `seconds` of audio, at the start of a block.
    void addDelayedUpdate(double seconds, std::uint8_t* dirtyFlag);
    /// Forgets the flag; to be called before it dies.
    void cancelDelayedUpdates(const std::uint8_t* dirtyFlag);

protected:
    /// The node's own work on the gathered input lines.
    virtual void processLines();
    /// Enters the definition's remaps and binds its allocations; not for nodes that only stand for others.
    virtual void bindParams();
    /// Whether blocks may arrive at its lines in this form; asked in each block, behind update(). Others are made whole.
    [[nodiscard]] virtual bool takesForm(ESampleForm form) const;
    /// Makes sure that the port exists, linked to or not.
    void declarePort(int port);

    /// Valid in update(): sample rate, lines or latency of the inputs differ from the last pass.
    [[nodiscard]] bool isConfigurationChanged() const { return m_isConfigurationChanged; }
    /// Asks for a configuration pass: in the next block, or in this one from within init().
    void requestConfiguration()
    {
        m_isConfigurationRequested = true;
        requestUpdate();
    }
    /// The next block is not to be a planned one.
    void requestUpdate();
    /// Lines or links are others than a plan may have found.
    void noteStructureChange();
    /// Takes and clears what changed of the bound parameters since the last call; false where nothing did.
    [[nodiscard]] bool takeParamChanges();
    [[nodiscard]] std::span<CAudioBoundParam> boundParams() { return m_boundParams.span(); }
    /// One more than the highest allocation index.
    [[nodiscard]] int allocCount() const { return m_allocCount; }
    /// Reads a parameter that is no allocation, by a path relative to this node; changes set `dirtyFlag` and the mask.
    void attachParam(CAudioBoundParam& param, const CString& path, int group, int element, std::uint8_t* dirtyFlag);
    void detachParam(CAudioBoundParam& param);

private:
    struct CDelayedUpdate {
        double seconds;
        std::uint8_t* dirtyFlag;
    };

    [[nodiscard]] bool settleLines();
    void collectLines();
    void alignLines();
    void runDelayedUpdates();
    void gatherBuffers();
    void gatherLine(CAudioLine& line);
    void makeWhole(CAudioLine& line);
    [[nodiscard]] CSampleBuffer mergeSources(const CAudioLine& line);
    [[nodiscard]] CSampleBuffer takeBlock(const CAudioLine::CSource& source);
    [[nodiscard]] CSampleBuffer takeSource(const CAudioLine::CSource& source);

    CAudioProcessContext m_context;
    const CAudioProcessDefBase* m_definition = nullptr;
    CString m_name;
    CString m_paramName; ///< where its parameters are looked up
    int m_groupIndex = -1;
    int m_elementIndex = 0;
    double m_sampleRate = 1.0;
    int m_inputLatency = 0;
    int m_blockLength = 0;
    bool m_isConfigurationChanged = false;
    bool m_isConfigurationRequested = false;
    CAudioLineSink m_input;
    CAudioLineSource m_output;
    CArray<CAudioLine*, 4> m_plannedLines; ///< of all ports
    CArray<std::unique_ptr<CAudioProcessPort>, 1> m_ports;
    CArray<CDelayedUpdate, 2> m_delayedUpdates;
    CArray<CAudioBoundParam, 4> m_boundParams; ///< sized once, since readers hold addresses in it
    std::uint8_t m_paramsDirty = 0;
    int m_allocCount = 0;
};

} // namespace qrb
