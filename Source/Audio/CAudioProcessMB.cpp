// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessMB.h"

#include "Audio/CAudioParamBinding.h"
#include "Audio/CAudioParamPath.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr int kAllPorts = CAudioProcessConnection::kAllPorts;

// Names below the node; parameters and remaps go by them.
constexpr const char* kBodyName = "mod";
constexpr const char* kLowPassName = "lp";
constexpr const char* kHighPassName = "hp";
constexpr const char* kPreName = "pre";

CErrorPtr findFilter(const CAudioProcessDefBase& definition, const char* attribute, const CAudioProcessDefBase*& out)
{
    const CString path = definition.getAttrString(attribute);
    if (!path.empty()) {
        QRB_TRY(definition.findProcess(path, out));
    }
    return nullptr;
}

CErrorPtr findFilters(const CAudioProcessDefBase& definition, CAudioBandFilterDefs& out)
{
    QRB_TRY(findFilter(definition, "multiband-lp", out.lowPass));
    QRB_TRY(findFilter(definition, "multiband-hp", out.highPass));
    QRB_TRY(findFilter(definition, "multiband-pre", out.pre));
    return nullptr;
}

} // namespace

CAudioProcessMB::CAudioProcessMB() = default;

CAudioProcessMB::~CAudioProcessMB()
{
    detachParam(m_countParam);
    detachParam(m_freqParam);
}

void CAudioProcessMB::visitParts(const CAudioProcessDefBase& definition, const FVisit& visit)
{
    visit({definition, kBodyName}, EExpansion::done);
    CAudioBandFilterDefs filters;
    if (const CErrorPtr error = findFilters(definition, filters)) {
        return; // the node will not come to life, and tells why
    }
    const std::pair<const CAudioProcessDefBase*, const char*> parts[] = {
        {filters.lowPass, kLowPassName}, {filters.highPass, kHighPassName}, {filters.pre, kPreName}};
    for (const auto& [filter, name] : parts) {
        if (filter != nullptr) {
            visit({*filter, name}, EExpansion::all);
        }
    }
}

CErrorPtr CAudioProcessMB::init()
{
    if (definition().multibandFreqParam().empty()) {
        return QRB_ERROR(
            "@qrbstr_CAudioProcessMB_init_NoMBFreqParamDefined No 'multiband-freq-param' attribute defined.");
    }
    if (definition().multibandCountParam().empty()) {
        return QRB_ERROR(
            "@qrbstr_CAudioProcessMB_init_NoMBCountParamDefined No 'multiband-count-param' attribute defined.");
    }
    QRB_TRY(findFilters(definition(), m_filters));
    attachParam(m_freqParam, definition().multibandFreqParam(), groupIndex(), -1, &m_splitsDirty);
    attachParam(m_countParam, definition().multibandCountParam(), groupIndex(), 0, &m_splitsDirty);
    return nullptr;
}

void CAudioProcessMB::bindParams()
{
    // Allocations are the bodies' business.
    declareProcessParams(*context().collector, definition(), paramProcessName(fullName()));
}

void CAudioProcessMB::disconnectAll()
{
    CAudioProcessComposite::disconnectAll();
    sequenceStore().clear();
    m_bands.clear();
    m_ports.clear();
}

void CAudioProcessMB::update()
{
    const bool areSplitsChanged = std::exchange(m_splitsDirty, std::uint8_t{0}) != 0;
    m_countParam.mask = 0;
    m_freqParam.mask = 0;
    if (isConfigurationChanged()) {
        announceInner();
        updatePorts();
    } else if (!areSplitsChanged) {
        return;
    }
    setBandCount(findBandCount());
    rebuildSequence();
}

int CAudioProcessMB::findBandCount() const
{
    const int group = std::max(groupIndex(), 0);
    const int most = m_countParam.storage == nullptr
                         ? 1
                         : std::clamp(roundToInt(m_countParam.storage->value(group, 0, 0, 1.0)), 1, kMaxBands);
    if (m_freqParam.storage == nullptr || !m_freqParam.storage->hasData()) {
        return 1;
    }
    const CAudioParamStorage& frequencies = *m_freqParam.storage;
    const int elementSize = std::max(1, static_cast<int>(frequencies.format().elementSize));
    // A group that nobody has written to stands at the defaults.
    const int splits = std::max(static_cast<int>(frequencies.elementCount(group)),
                                static_cast<int>(frequencies.defaultCells().size()) / elementSize);
    double previous = 0.0;
    int count = 1;
    for (int split = 0; split < splits && count < most; ++split) {
        const double frequency = frequencies.value(group, split);
        if (!(frequency >= previous && frequency < 0.5 * sampleRate())) {
            break;
        }
        previous = frequency;
        ++count;
    }
    return count;
}

void CAudioProcessMB::updatePorts()
{
    CArray<int, 4> present;
    for (int port = 0; port < portCount(); ++port) {
        if (!lines(port).empty()) {
            present.append(port);
        }
    }
    const auto has = [](const CArray<int, 4>& ports, int port) {
        return std::ranges::find(ports, port) != ports.end();
    };
    const CArray<int, 4> before = std::exchange(m_ports, present);
    const int count = static_cast<int>(m_bands.size());
    for (const int port : before) {
        for (int band = count - 1; band >= 0 && !has(m_ports, port); --band) {
            disconnectPort(band, port);
        }
    }
    for (const int port : m_ports) {
        for (int band = 0; band < count && !has(before, port); ++band) {
            connectPort(band, port);
        }
    }
}

void CAudioProcessMB::setBandCount(int count)
{
    const int before = static_cast<int>(m_bands.size());
    if (count == before) {
        return;
    }
    // The band that is last now and the one that will be meet their splits in another way than they do now.
    const int firstChanged = std::max(std::min(before, count) - 1, 0);
    for (int band = before - 1; band >= firstChanged; --band) {
        for (const int port : m_ports) {
            disconnectPort(band, port);
        }
    }
    while (static_cast<int>(m_bands.size()) > count) {
        m_bands.removeLast();
    }
    while (static_cast<int>(m_bands.size()) < count) {
        m_bands.append(makeBand(static_cast<int>(m_bands.size())));
    }
    for (int band = firstChanged; band < count; ++band) {
        for (const int port : m_ports) {
            connectPort(band, port);
        }
    }
}

std::unique_ptr<CAudioBandRec> CAudioProcessMB::makeBand(int index)
{
    auto band = std::make_unique<CAudioBandRec>();
    band->index = index;
    CString name = fullName() + "." + kBodyName;
    if (index > 0) {
        name += "#";
        name += formatInteger(index);
    }
    band->body = makeInner(definition(), name, index, EExpansion::done);
    if (band->body != nullptr) {
        band->body->output().connect(kAllPorts, innerOutput(), kAllPorts, index);
    }
    return band;
}

std::unique_ptr<CAudioProcessBase> CAudioProcessMB::makeFilter(const CAudioProcessDefBase* filterDefinition,
                                                               const char* name, int band, int port)
{
    if (filterDefinition == nullptr) {
        return nullptr;
    }
    return makeInner(*filterDefinition, fullName() + "." + name + "#" + formatInteger(band) + "-" + formatInteger(port),
                     band);
}

CAudioBandPort CAudioProcessMB::makeFilters(int band, int port)
{
    CAudioBandPort filters;
    filters.port = port;
    const bool isCascade = m_filters.highPass != nullptr;
    if (!isLast(band) || (!isCascade && band > 0)) {
        filters.lowPass = makeFilter(m_filters.lowPass, kLowPassName, band, port);
    }
    if (!isLast(band)) {
        filters.highPass = makeFilter(m_filters.highPass, kHighPassName, band, port);
        filters.pre = makeFilter(m_filters.pre, kPreName, band, port);
    }
    return filters;
}

void CAudioProcessMB::connectPort(int band, int port)
{
    CArray<CAudioBandPort, 3>& ports = m_bands[static_cast<std::size_t>(band)]->ports;
    std::size_t place = 0;
    while (place < ports.size() && ports[place].port < port) {
        ++place;
    }
    ports.insertAt(place, makeFilters(band, port));
    CAudioBandPort& filters = ports[place];

    CAudioLineSource* source = &innerInput();
    int sourcePort = port;
    const auto lead = [&](CAudioLineSink& sink, int sinkPort) {
        source->connect(sourcePort, sink, sinkPort, sinkPort);
    };
    if (band > 0) {
        CAudioBandPort* below = m_bands[static_cast<std::size_t>(band) - 1]->findPort(port);
        if (below != nullptr && below->highPass != nullptr) {
            source = &below->highPass->output();
            sourcePort = 0;
        }
    }
    if (filters.highPass != nullptr) {
        lead(filters.highPass->input(), 0);
    }
    for (const auto* filter : {&filters.lowPass, &filters.pre}) {
        if (*filter != nullptr) {
            lead((*filter)->input(), 0);
            source = &(*filter)->output();
            sourcePort = 0;
        }
    }
    CAudioProcessBase* body = m_bands[static_cast<std::size_t>(band)]->body.get();
    if (body != nullptr) {
        lead(body->input(), port);
    }
}

void CAudioProcessMB::disconnectPort(int band, int port)
{
    CAudioBandRec& record = *m_bands[static_cast<std::size_t>(band)];
    if (record.body != nullptr) {
        CAudioLineSink& sink = record.body->input();
        for (std::size_t i = sink.connections().size(); i > 0; --i) {
            CAudioProcessConnection& connection = *sink.connections()[i - 1];
            if (connection.sinkPort() == port) {
                connection.source().drop(connection);
            }
        }
    }
    for (std::size_t i = record.ports.size(); i > 0; --i) {
        if (record.ports[i - 1].port == port) {
            record.ports.removeAt(i - 1); // the filters take their connections along
        }
    }
}

void CAudioProcessMB::rebuildSequence()
{
    sequenceStore().clear();
    const auto append = [this](const std::unique_ptr<CAudioProcessBase>& node) {
        if (node != nullptr) {
            sequenceStore().append(node.get());
        }
    };
    for (const auto& band : m_bands) {
        for (const CAudioBandPort& port : band->ports) {
            append(port.lowPass);
            append(port.highPass);
            append(port.pre);
        }
        append(band->body);
    }
}

} // namespace qrb
