// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CModuleHost.h"

#include "Tools/Render/HostText.h"
#include "Tools/Render/Speakers.h"

#include <pluginterfaces/vst/ivstunits.h>

namespace render {

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

/// Names of the first list of programs.
std::vector<std::string> programNames(IComponent& component)
{
    std::vector<std::string> names;
    const FUnknownPtr<IUnitInfo> units(&component);
    ProgramListInfo list;
    if (!units || units->getProgramListInfo(0, list) != kResultTrue)
        return names;
    for (int32 i = 0; i < list.programCount; ++i) {
        String128 name{};
        static_cast<void>(units->getProgramName(list.id, i, name));
        names.push_back(vst3::narrowText(name));
    }
    return names;
}

/// The parameter that selects programs.
std::optional<ParamID> programParam(IEditController& controller)
{
    for (int32 i = 0; i < controller.getParameterCount(); ++i) {
        ParameterInfo info;
        if (controller.getParameterInfo(i, info) == kResultTrue && (info.flags & ParameterInfo::kIsProgramChange) != 0)
            return info.id;
    }
    return std::nullopt;
}

} // namespace

bool CModuleHost::open(std::string& error)
{
    if (!CFilePlayer::open(error))
        return false;
    m_module.emplace(m_path, error);
    if (m_module->factory() == nullptr)
        return false;
    m_host.emplace(*m_module->factory(), &m_runLoop);
    if (!m_host->failure().empty())
        error = "'" + m_path + "' gives no instance: " + m_host->failure();
    return error.empty();
}

bool CModuleHost::prepare(bool isOffline, std::string& error)
{
    const std::uint64_t speakers = speakersOf(channelCount());
    if (!m_host->setLayout(speakers, speakers, speakersOf(keyCount() > 0 ? keyCount() : 2))) {
        error = "'" + m_path + "' does not take " + std::to_string(channelCount()) + " channels" +
                (keyCount() > 0 ? " with a side-chain of " + std::to_string(keyCount()) : "");
        return false;
    }
    prepareBuffers();
    m_host->activateBuses(keyCount() > 0);
    m_host->setup(sampleRate(), options().useDouble ? kSample64 : kSample32, static_cast<int32>(options().blockSize),
                  isOffline ? kOffline : kRealtime);
    if (!applySettings(error))
        return false;
    m_host->activate();
    runOwner();
    if (!m_host->failure().empty()) {
        error = "'" + m_path + "' does not start: " + m_host->failure();
        return false;
    }
    return collectEvents(error);
}

bool CModuleHost::applySettings(std::string& error)
{
    if (!state().empty() && !m_host->restore({state().begin(), state().end()})) {
        error = "the state '" + options().stateFile + "' cannot be used";
        return false;
    }
    if (options().presetName && !selectProgram(*options().presetName, error))
        return false;
    for (const CSetting& setting : options().sets) {
        vst3::CPoint point{};
        if (!resolve(setting, point, error))
            return false;
        m_host->controller->setParamNormalized(point.id, point.value);
    }
    return true;
}

bool CModuleHost::selectProgram(const std::string& name, std::string& error)
{
    const std::vector<std::string> names = programNames(*m_host->component);
    const std::optional<std::size_t> index = findName(names, name);
    const std::optional<ParamID> param = programParam(*m_host->controller);
    if (!index || !param) {
        error = "there is no preset '" + name + "' (--presets shows all)";
        return false;
    }
    m_host->controller->setParamNormalized(*param, programToNormal(*index, names.size()));
    runOwner();
    return true;
}

std::optional<double> CModuleHost::readValue(const ParameterInfo& info, const std::string& text)
{
    if ((info.flags & ParameterInfo::kIsProgramChange) != 0)
        return parseProgram(programNames(*m_host->component), text);
    if (isNormalised(text))
        return parseNormalised(text);
    String128 wide{};
    vst3::wideText(text, wide);
    double value = 0.0;
    const bool isTaken = m_host->controller->getParamValueByString(info.id, wide, value) == kResultTrue;
    const bool isDefault = value == info.defaultNormalizedValue;
    if (!isTaken || (isDefault && !meansDefault(text, m_host->text(info.id, value))))
        return std::nullopt;
    return value;
}

bool CModuleHost::resolve(const CSetting& setting, vst3::CPoint& out, std::string& error)
{
    IEditController& controller = *m_host->controller;
    const bool isPlain = setting.group == 0 && setting.element == 0;
    for (int32 i = 0; isPlain && i < controller.getParameterCount(); ++i) {
        ParameterInfo info;
        if (controller.getParameterInfo(i, info) != kResultTrue || vst3::narrowText(info.title) != setting.path)
            continue;
        const std::optional<double> value = readValue(info, setting.text);
        if (!value) {
            error = "'" + setting.text + "' is no value of '" + setting.path + "'";
            return false;
        }
        out = {info.id, 0, *value};
        return true;
    }
    error = "the module shows no parameter '" + setting.path + "' (--list shows all)";
    return false;
}

bool CModuleHost::collectEvents(std::string& error)
{
    for (const CSetting& setting : options().events) {
        vst3::CPoint point{};
        if (!resolve(setting, point, error) || !addEvent(setting, static_cast<int>(point.id), point.value, error))
            return false;
    }
    sortEvents();
    return true;
}

void CModuleHost::queueEvent(int offset, int index, double value)
{
    m_points.push_back({static_cast<ParamID>(index), offset, value});
}

void CModuleHost::processBlock(int frames)
{
    m_host->process({inBuffers().pointers, keyBuffers().pointers, outBuffers().pointers, frames}, m_points);
    m_points.clear();
}

void CModuleHost::runOwner()
{
    m_runLoop.runTimers();
}

int CModuleHost::latency()
{
    return static_cast<int>(m_host->processor->getLatencySamples());
}

std::vector<CFilePlayer::CParamText> CModuleHost::listParams()
{
    std::vector<CParamText> list;
    IEditController& controller = *m_host->controller;
    for (int32 i = 0; i < controller.getParameterCount(); ++i) {
        ParameterInfo info;
        if (controller.getParameterInfo(i, info) != kResultTrue)
            continue;
        list.push_back({.path = vst3::narrowText(info.title),
                        .groups = 1,
                        .elements = 1,
                        .values = m_host->text(info.id, controller.getParamNormalized(info.id)),
                        .min = m_host->text(info.id, 0.0),
                        .max = m_host->text(info.id, 1.0),
                        .defaults = m_host->text(info.id, info.defaultNormalizedValue),
                        .unit = vst3::narrowText(info.units)});
    }
    return list;
}

std::vector<CFilePlayer::CPresetText> CModuleHost::listPresets()
{
    std::vector<CPresetText> list;
    const std::vector<std::string> names = programNames(*m_host->component);
    const std::optional<ParamID> param = programParam(*m_host->controller);
    const std::size_t current =
        param ? programOfNormal(m_host->controller->getParamNormalized(*param), names.size()) : names.size();
    list.reserve(names.size());
    for (const std::string& name : names)
        list.push_back({name, "", list.size() == current});
    return list;
}

bool CModuleHost::saveState(std::string& bytes, std::string& error)
{
    const std::vector<char> state = m_host->save();
    bytes.assign(state.begin(), state.end());
    if (bytes.empty() || !m_host->failure().empty())
        error = "the state cannot be saved: " + m_host->failure();
    return error.empty();
}

bool CModuleHost::savePreset(std::string&, std::string& error)
{
    error = "a hosted module saves states only";
    return false;
}

} // namespace render
