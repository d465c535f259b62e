// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBoundParam.h"
#include "Audio/CAudioLine.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace qrb {

class CAudioProcessTerminalBase;
class CSampleBufferPool;

/// The signal work of a terminal for one line, or for all its lines at once where the definition says so.
///
/// Made by its node, set up with lines and sample rate, then `start` and `reset`, then `update` whenever a parameter is
/// touched, then `process` in every block. During a crossfade two modules serve the same lines. Thread: audio.
class CAudioModule : public CCheckedObject {
public:
    /// Highest latency in samples that a module may report.
    static constexpr int kMaxLatency = 1 << 24;

    CAudioModule() = default;
    CAudioModule(const CAudioModule&) = delete;
    CAudioModule& operator=(const CAudioModule&) = delete;

    /// The lines and the sample rate are known. Runs again whenever the node's configuration changes.
    virtual void start();
    /// Clears the signal state.
    virtual void reset();
    /// Recalculates what depends on parameters, sample rate and lines.
    virtual void update();
    /// Once on creation: takes the parameters with regParam().
    virtual void regParams();
    /// Runs blockLength() samples, leaving one output for each line: writeOutput() or passInput().
    virtual void process() = 0;
    static constexpr int kNoPort = -1;
    /// The port whose lines, all of them there, are the outputs as they are until the next update(); kNoPort where
    /// process() has to run.
    [[nodiscard]] virtual int passedPort() const { return kNoPort; }
    /// The module's kind has a processTogether() of its own.
    [[nodiscard]] virtual bool canRunTogether() const { return false; }
    /// Runs the block for modules of this one's class that do not wait for each other, this one among them; each is
    /// left as by its own process(), bit for bit.
    virtual void processTogether(std::span<CAudioModule* const> modules);

    /// Whether processTogether() with a module that waits for this one's signal would cost hardly more than either alone,
    /// so that it pays to run both in pieces.
    [[nodiscard]] virtual bool canOverlap(const CAudioModule& /*waiting*/) const { return false; }

    /// Whether process() can have blocks of this form on port 0; asked in each block. A form given on as output is no
    /// matter of this.
    [[nodiscard]] virtual bool takesForm(ESampleForm form) const { return form == ESampleForm::whole; }

    /// The module's kind has a processInSeries() of its own.
    [[nodiscard]] virtual bool canRunInSeries() const { return false; }
    /// Runs the block for modules of this one's class of which each gets just what the one before it makes, this one
    /// first; the last one is left as if each had run by itself, the others without output. False, with nothing done,
    /// where that does not suit the block.
    [[nodiscard]] virtual bool processInSeries(std::span<CAudioModule* const> modules);

    /// Samples this module adds to the latency of its input. 0 unless update() sets another.
    [[nodiscard]] int latency() const { return m_latency; }

protected:
    [[nodiscard]] CAudioProcessTerminalBase& node() const { return *m_node; }
    [[nodiscard]] CSampleBufferPool& pool() const;
    /// Group its parameters are read at.
    [[nodiscard]] int group() const { return m_group; }
    [[nodiscard]] int element() const;
    /// Channel of its (first) line.
    [[nodiscard]] int channel() const { return m_channel; }
    [[nodiscard]] double sampleRate() const { return m_sampleRate; }
    [[nodiscard]] int blockLength() const { return m_blockLength; }

    /// Number of outputs; also of lines on port 0, unless inputs of one channel are kept apart there.
    [[nodiscard]] int outputCount() const { return static_cast<int>(m_outputs.size()); }
    [[nodiscard]] int lineCount(int port = 0) const
    {
        const auto place = static_cast<std::size_t>(port);
        return place < m_ports.size() ? static_cast<int>(m_ports[place].lines.size()) : 0;
    }
    /// Null where the port has no such line.
    [[nodiscard]] const CAudioLine* line(int port = 0, int index = 0) const
    {
        return index < 0 || index >= lineCount(port)
                   ? nullptr
                   : m_ports[static_cast<std::size_t>(port)].lines[static_cast<std::size_t>(index)];
    }
    /// Samples of a line in this block, blockLength() of them; null where the port has no such line.
    [[nodiscard]] const double* input(int port = 0, int index = 0) const
    {
        const CAudioLine* found = line(port, index);
        return found == nullptr ? nullptr : found->buffer.data();
    }

    /// A fresh buffer as output `index`, to be filled with blockLength() samples.
    [[nodiscard]] double* writeOutput(int index = 0);
    /// The same for the samples at even places of the block alone; where node().output().hearing() is `half`.
    [[nodiscard]] double* writeThinned(int index);
    /// Hands an input on by reference; silence where the port has no such line.
    void passInput(int port, int inputIndex, int outputIndex);
    void passInput(int port = 0) { passInput(port, 0, 0); }
    /// Makes a buffer output `index`, by reference: one buffer may serve several outputs.
    void setOutput(int index, const CSampleBuffer& buffer);
    [[nodiscard]] const CSampleBuffer& output(int index) const { return m_outputs[static_cast<std::size_t>(index)]; }

    /// In regParams(): the parameter allocated under `index`; where it is missing a line is logged.
    [[nodiscard]] CAudioParamSlot regParam(int index, double unbound) const;
    /// Value at the module's own group and element.
    [[nodiscard]] double value(const CAudioParamSlot& slot) const { return slot.value(m_group, element()); }
    [[nodiscard]] int valueInt(const CAudioParamSlot& slot) const { return slot.valueInt(m_group, element()); }
    [[nodiscard]] bool isOn(const CAudioParamSlot& slot) const { return value(slot) >= 0.5; }
    /// In update(): whether the parameter changed since the last update; all of them did before the first.
    [[nodiscard]] bool isTouched(const CAudioParamSlot& slot) const;
    /// In update(): nothing of this module has sounded yet with the present lines.
    [[nodiscard]] bool isFirstUpdate() const { return m_isFirstUpdate; }
    /// What to seed a generator with: another number for each start, of each line, that does not depend on how blocks
    /// are cut.
    [[nodiscard]] std::uint32_t seed(int index = 0) const
    {
        return m_seed + static_cast<std::uint32_t>(index) * 0x85EBCA6Bu;
    }
    void setLatency(int samples) { m_latency = std::clamp(samples, 0, kMaxLatency); }
    /// Has update() run again after `seconds` of audio, at the start of a block, whether or not a parameter is touched.
    void updateAfter(double seconds);

private:
    friend class CAudioModuleInstance;
    friend class CAudioModulePool;

    struct CPortLines {
        CArray<CAudioLine*, 2> lines;
    };
    /// What a line was when the module got it; the slot itself may come to carry another one.
    struct CLineId {
        int port;
        int channel;
        int group;

        friend bool operator==(const CLineId&, const CLineId&) = default;
    };

    CAudioProcessTerminalBase* m_node = nullptr;
    int m_group = 0;
    int m_channel = -1;
    int m_latency = 0;
    int m_blockLength = 0;
    int m_wholeStart = 0;                    ///< of the running piece in m_wholeOutputs
    CSampleBuffer* m_wholeOutputs = nullptr; ///< while a block runs in pieces: where they are to be written
    std::uint32_t m_seed = 0;
    double m_sampleRate = 1.0;
    CArray<CPortLines, 2> m_ports;
    CArray<CLineId, 4> m_lineIds;
    CArray<CSampleBuffer, 2> m_outputs;
    CArray<std::uint8_t, 16> m_touched; ///< by allocation index
    std::uint8_t m_isDirty = 0;
    bool m_isFirstUpdate = true;
};

} // namespace qrb
