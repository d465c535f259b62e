// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CGraphRig.h"

#include "Audio/AudioCreators.h"
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Core/CObject.h"
#include "Core/CQrbMemAllocator.h"

#include <gtest/gtest.h>
#include <limits>

namespace qrb {

namespace {

constexpr CCreatorRow kRows[] = {creatorRow<CProbeDef>("test:modProbe")};

std::string& probeLog()
{
    static std::string log;
    return log;
}

std::string document(const std::string& body, const std::string& attrs, const std::string& siblings)
{
    return "<shared><core:object name='audio'><core:object name='paramcvt'><audio:cvt-real "
           "name='real'/></core:object>" +
           siblings + "<audio:process-def name='modMain' " + attrs + ">" + body +
           "</audio:process-def><audio:modOutput name='modOutput'/></core:object></shared>";
}

} // namespace

CErrorPtr CProbeDef::init()
{
    QRB_TRY(CModDef<CProbe>::init());
    m_isAge = getAttrBool("is-age");
    m_again = getAttrDouble("again");
    return nullptr;
}

void CProbeModule::start()
{
    probeLog() += "s" + std::to_string(channel());
}

void CProbeModule::reset()
{
    probeLog() += "r" + std::to_string(channel());
    m_age = 0.0;
}

void CProbeModule::update()
{
    probeLog() += "u" + std::to_string(channel());
    m_current = value(m_level);
    setLatency(valueInt(m_reported));
    const double again = static_cast<const CProbeDef&>(node().definition()).again();
    if (again > 0.0 && isFirstUpdate())
        updateAfter(again);
}

void CProbeModule::regParams()
{
    m_level = regParam(0, 1.0);
    m_reported = regParam(1, 0.0);
    m_isAge = static_cast<const CProbeDef&>(node().definition()).isAge();
}

void CProbeModule::process()
{
    for (int i = 0; i < outputCount(); ++i) {
        double* out = writeOutput(i);
        for (int n = 0; n < blockLength(); ++n)
            out[n] = input(0, i)[n] * m_current + (m_isAge ? m_age + n : 0.0);
    }
    m_age += blockLength();
}

CGraphRig::CGraphRig(const std::string& body, const std::string& attrs, const std::string& siblings)
{
    m_module = std::make_unique<CTestModule>(document(body, attrs, siblings),
                                             CTestModuleOptions{{audioCreators(), kRows}, nullptr});
    CObject& root = m_module->loadRoot("<root><core:object name='plugin'><audio:audio-env name='audio-env'/>"
                                       "<audio:param-collector name='param-collector' env='^audio-env'/>"
                                       "<audio:viz-collector name='viz-collector' env='^audio-env' "
                                       "param-collector='^param-collector'/>"
                                       "</core:object></root>");
    m_collector = &dynamic_cast<CAudioParamCollector&>(CTestModule::find(root, "plugin.param-collector"));
    CAudioProcessSetup setup;
    m_viz = &dynamic_cast<CAudioVizCollector&>(CTestModule::find(root, "plugin.viz-collector"));
    setup.context = {m_collector, &m_collector->env(), &m_pool, nullptr, m_viz};
    setup.definition = &m_module->shared<CAudioProcessDefBase>("audio.modMain");
    setup.name = "plugin.modMain";
    EXPECT_EQ(errorText(instantiateTopProcess(setup, m_main)), "");
    setup.definition = &m_module->shared<CAudioProcessDefBase>("audio.modOutput");
    setup.name = "plugin.modOutput";
    EXPECT_EQ(errorText(instantiateTopProcess(setup, m_output)), "");
    m_source.connect(0, m_main->input(), 0);
    m_main->output().connect(0, m_output->input(), 0);
    setLines({{0, 0}});
    (void)takeProbeLog();
}

CGraphRig::~CGraphRig()
{
    m_output.reset();
    m_main.reset();
    m_source.disconnectAll();
    EXPECT_EQ(m_pool.usedCount(), 0);
}

void CGraphRig::setLines(const std::vector<CLineId>& lines, double sampleRate)
{
    CArray<CAudioLineInfo> infos;
    for (const CLineId& line : lines)
        infos.append({line.channel, line.group, 0, 0, sampleRate});
    m_source.setLines(infos.span());
    m_sampleRate = sampleRate;
}

void CGraphRig::set(const std::string& path, double value, int group, int element)
{
    EXPECT_TRUE(m_collector->getParam(CString(("plugin.modMain." + path).c_str())).setElement(group, element, value));
}

void CGraphRig::feed(int count)
{
    m_collector->flushQueue();
    for (std::size_t i = 0; i < m_source.lines().size(); ++i) {
        CSampleBuffer buffer = m_pool.get(count);
        for (int n = 0; n < count; ++n)
            buffer.data()[n] = input(static_cast<int>(i), m_time + n);
        m_source.send(static_cast<int>(i), buffer, count);
    }
    m_main->process();
    m_output->runInputStep();
    m_time += count;
    m_collector->env().setTimeNow(m_time / m_sampleRate);
}

void CGraphRig::feedOnly(int count)
{
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    feed(count);
    m_output->releaseInputs();
    allocations += CQrbMemAllocator::allocateCount() - before;
}

std::map<int, std::vector<double>> CGraphRig::run(int count, int block)
{
    std::map<int, std::vector<double>> result;
    for (int done = 0; done < count; done += block) {
        const int length = std::min(block, count - done);
        feed(length);
        for (const CAudioLine& line : m_output->lines()) {
            if (line.buffer)
                result[line.channel].insert(result[line.channel].end(), line.buffer.data(),
                                            line.buffer.data() + m_output->blockLength());
        }
        m_output->releaseInputs();
    }
    return result;
}

double CGraphRig::runOne()
{
    const auto result = run(1);
    const auto line = result.find(0);
    return line == result.end() ? std::numeric_limits<double>::quiet_NaN() : line->second.front();
}

std::string CGraphRig::order()
{
    std::string names;
    for (const CAudioProcessBase* node : main().sequence()) {
        const std::string name = node->fullName().toUtf8();
        names += (names.empty() ? "" : " ") + name.substr(std::string("plugin.modMain.").size());
    }
    return names;
}

std::string CGraphRig::takeProbeLog()
{
    return std::exchange(probeLog(), {});
}

std::string paramXml(const std::string& name, const std::string& defaults, const std::string& attrs)
{
    return "<audio:param name='" + name +
           "' element-size='1' converter='audio.paramcvt.real' min-values='-1000' max-values='1000' def-values='" +
           defaults + "' " + attrs + "/>";
}

std::string probeXml(const std::string& name, const std::string& level, const std::string& attrs)
{
    return "<test:modProbe name='" + name + "' " + attrs + "><audio:param-alloc name='a' index='0' param-name='" +
           level + "'/><audio:param-alloc name='b' index='1' param-name='latency'/></test:modProbe>";
}

} // namespace qrb
