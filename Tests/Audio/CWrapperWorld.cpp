// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CWrapperWorld.h"

#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

namespace {

class CRecorderDef : public CModDef<CRecorder> {};

constexpr CCreatorRow kRows[] = {creatorRow<CRecorderDef>("test:recorder")};

std::string param(const std::string& name, const std::string& value)
{
    return "<audio:param name='" + name + "' element-size='1' converter='audio.paramcvt.real' min-values='-1000'" +
           " max-values='1000' def-values='" + value +
           "' is-global='true' is-single-group='true' is-single-element='true'/>";
}

std::string document(const std::string& projectAttrs)
{
    return "<shared><core:object name='project' " + (projectAttrs.empty() ? goodProject() : projectAttrs) + R"(/>
        <core:object name="audio" plugin-tag="plugin">
          <core:object name="paramcvt"><audio:cvt-real name="real" decimals="2"/></core:object>
          <audio:process-def name="modMain" is-auto-links="true">)" +
           param("level", "1") + param("host-oversampling-mode", "9") + param("host-offline", "0") +
           param("host-latency-change", "0") + param("host-bpm", "0") + R"(
            <audio:param name="mix" element-size="1" converter="audio.paramcvt.real" min-values="0" max-values="9"
                def-values="1,2,3;4" is-storable="true"/>
            <audio:param name="keep" element-size="1" converter="audio.paramcvt.real" min-values="0" max-values="9"
                def-values="5" is-persistent="true"/>
            <test:recorder name="modRecorder">
              <audio:param-alloc name="level" index="0" param-name="^level"/>
            </test:recorder>
            <audio:modLatencyUniformer name="modUniformer" latencies="44100=100;96000=200;192000=300"/>
          </audio:process-def>
          <audio:modOutput name="modOutput"/>
        </core:object>
        <template name="plugin" class="core:object">
          <audio:audio-env name="audio-env"/>
          <audio:param-collector name="param-collector" env="^audio-env"/>
          <audio:viz-collector name="viz-collector" env="^audio-env" param-collector="^param-collector"/>
          <other:param-interface-base-connector-uni name="interface-base-connector"/>
          <audio:interface-base name="interface-base" base-connector="^interface-base-connector"
            param-collector="^param-collector" viz-collector="^viz-collector"/>
          <audio:ext-param-list name="ext-param-list">
            <audio:ext-param name="level" param-collector="plugin.param-collector" param-name="plugin.modMain.level"
              ext-name="Level"/>
          </audio:ext-param-list>
          <audio:cctable name="cctable"/>
          <audio:param-registry name="param-registry" hierarchy="plugin.modMain" id="test" is-master="true"
            param-collector="^param-collector" def-name-remap="plugin=audio"/>
        </template></shared>)";
}

} // namespace

std::string goodProject()
{
    return "app-name='Tester' app-vendor='Nobody' app-version='1.2' plugin-code='test' plugin-intchannel-count='8' "
           "plugin-group-count='8' plugin-tail='0.5' auto-oversampling-rtmode='1' use-host-bpm='true'";
}

CErrorPtr CRecorder::init()
{
    m_level = regParam(0, -1.0);
    return CAudioProcessBase::init();
}

void CRecorder::update()
{
    static_cast<void>(takeParamChanges());
    if (!isConfigurationChanged())
        return;
    CArray<CAudioLineInfo> infos;
    for (const CAudioLine& line : lines())
        infos.append({line.channel, line.group, 0, inputLatency(), sampleRate()});
    output().setLines(infos.span());
}

void CRecorder::processLines()
{
    const double level = m_level.value(0, 0);
    calls().push_back({blockLength(), static_cast<int>(lines().size()), level});
    for (std::size_t i = 0; i < lines().size(); ++i) {
        CSampleBuffer scaled = pool().get(blockLength());
        for (int n = 0; n < blockLength(); ++n)
            scaled.data()[n] = lines()[i].buffer.data()[n] * level;
        output().send(static_cast<int>(i), scaled, blockLength());
    }
}

std::vector<CRecorder::CCall>& CRecorder::calls()
{
    static std::vector<CCall> list;
    return list;
}

bool CTestWrapper::onExtParamEvent(const CExternalEvent& event)
{
    if (refuseCount > 0) {
        --refuseCount;
        return false;
    }
    return paramCollector().getParam("plugin.modMain.level").trySetElement(0, 0, event.value);
}

void CTestWrapper::onLatencyChange()
{
    CAudioWrapper::onLatencyChange();
    ++latencyChangeCount;
}

double CTestWrapper::param(const char* path)
{
    return paramCollector().getParam(path).value(0, 0, 0, -77.0);
}

CWrapperWorld::CWrapperWorld(const std::string& projectAttrs)
    : m_module(document(projectAttrs), CTestModuleOptions{{audioCreators(), kRows}, &m_folders})
{
}

} // namespace qrb
