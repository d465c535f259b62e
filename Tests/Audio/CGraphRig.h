// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcess.h"
#include "Audio/CAudioProcessTerminal.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModOutput.h"
#include "Tests/Support/CTestModule.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qrb {

class CAudioParamCollector;
class CAudioVizCollector;

/// Module of the tag "test:modProbe": level * input, where the level is its slot 0; with `is-age` it adds the samples
/// since its last reset; with `again` it asks for a second update after so many seconds; its slot 1 is the latency it reports, its slot 2 a parameter that changes nothing.
class CProbeModule : public CAudioModule {
public:
    void start() override;
    void reset() override;
    void update() override;
    void regParams() override;
    void process() override;

private:
    CAudioParamSlot m_level;
    CAudioParamSlot m_reported;
    bool m_isAge = false;
    double m_current = 0.0;
    double m_age = 0.0;
};

class CProbe : public CAudioProcessTerminal<CProbeModule> {};

class CProbeDef : public CModDef<CProbe> {
public:
    [[nodiscard]] CErrorPtr init() override;
    [[nodiscard]] bool isAge() const { return m_isAge; }
    [[nodiscard]] double again() const { return m_again; }

private:
    bool m_isAge = false;
    double m_again = 0.0;
};

/// A process built from a few lines of document, fed sample by sample from a function of line and time.
class CGraphRig {
public:
    using FInput = std::function<double(int line, int sample)>;
    struct CLineId {
        int channel;
        int group;
    };

    /// `body` are the children of the process, `attrs` its attributes, `siblings` what stands beside it in "audio".
    explicit CGraphRig(const std::string& body, const std::string& attrs = "is-auto-links='true'",
                       const std::string& siblings = "");
    ~CGraphRig();

    /// Lines from the next block on, all on port 0.
    void setLines(const std::vector<CLineId>& lines, double sampleRate = 44100.0);
    void set(const std::string& path, double value, int group = 0, int element = 0);
    /// Runs `count` samples in blocks of `block`; channel to samples. Time goes on from run to run.
    std::map<int, std::vector<double>> run(int count, int block = 64);
    /// One block whose output nobody looks at; adds what it allocates from the library to `allocations`.
    void feedOnly(int count);
    std::uint64_t allocations = 0;
    /// The same, first sample of channel 0 alone; NaN without such a line.
    double runOne();
    void reset() { m_main->reset(); }

    [[nodiscard]] CAudioProcess& main() { return dynamic_cast<CAudioProcess&>(*m_main); }
    /// Names of the nodes that run, in order, joined with blanks.
    [[nodiscard]] std::string order();
    [[nodiscard]] int latency() const { return m_output->inputLatency(); }
    [[nodiscard]] const std::vector<std::string>& logLines() const { return m_module->logLines(); }
    [[nodiscard]] int countLogged(const std::string& line) const
    {
        return static_cast<int>(std::ranges::count(m_module->logLines(), line));
    }
    [[nodiscard]] CAudioParamCollector& collector() { return *m_collector; }
    [[nodiscard]] CSampleBufferPool& pool() { return m_pool; }
    [[nodiscard]] CAudioVizCollector& viz() { return *m_viz; }

    FInput input = [](int, int) { return 1.0; };
    /// What probes did since the last look, as "start reset update"; one letter each and the channel.
    static std::string takeProbeLog();

private:
    void feed(int count);

    std::unique_ptr<CTestModule> m_module;
    CAudioParamCollector* m_collector = nullptr;
    CAudioVizCollector* m_viz = nullptr;
    CSampleBufferPool m_pool;
    std::unique_ptr<CAudioProcessBase> m_main;
    std::unique_ptr<CAudioProcessBase> m_output;
    CAudioLineSource m_source;
    int m_time = 0;
    double m_sampleRate = 44100.0;
};

/// A parameter declaration; `defaults` in the grammar of "def-values".
[[nodiscard]] std::string paramXml(const std::string& name, const std::string& defaults,
                                   const std::string& attrs = "is-global='true'");
/// A probe whose level is the parameter `level`.
[[nodiscard]] std::string probeXml(const std::string& name, const std::string& level, const std::string& attrs = "");

} // namespace qrb
