// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CMonitor.h"

#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Tools/Monitor/Client/PrintableText.h"

#include <algorithm>

namespace monitor {

namespace {

const std::string kGroup = "modThumpcraft.";
const std::string kBand = "modThumpcraft.modBand.mod.";

std::string numberOf(const CMeterBank::CLine& line, bool hasBands)
{
    return std::to_string(line.channel + 1) + (hasBands ? "/" + std::to_string(line.band + 1) : "");
}

CPicture::CMeters metersOf(const char* name, const CMeterBank& bank, CPicture::EMeter kind, bool hasBands)
{
    CPicture::CMeters meters{name, kind, {}};
    for (const auto& [line, level] : bank.levels())
        meters.lines.push_back({numberOf(line, hasBands), toDecibels(level.value), toDecibels(level.peak)});
    return meters;
}

} // namespace

const char* CMonitor::keyHelp()
{
    return "j k  down and up the settings     + -  more and less     r  default\n"
           "b    next band                    g    next group        n p  next and previous program\n"
           "u y  undo, redo                   x    swap A and B      c  copy to the other of both\n"
           "d    all settings to default      q    end\n";
}

CMonitor::CMonitor(CClientTree& tree)
    : m_tree(tree), m_presetName(tree.client(), "preset-name"), m_side(tree.client(), "ab-state"),
      m_bandCount(tree.client(), kGroup + "xo-band-count"), m_programs(tree.client()),
      m_bandsIn(tree.exchange(), kBand + "modMeterIn"), m_out(tree.exchange(), "modMeterOut"),
      m_ratio(tree.exchange(), "modMeterIODiff"), m_gate(tree.exchange(), kGroup + "modGate.modMeterGR"),
      m_compressor(tree.exchange(), kBand + "modComp.modMeterGR"), m_spectrum(tree.exchange(), "modSpectrum")
{
    addControls();
}

void CMonitor::addControls()
{
    struct CRow {
        const char* path;
        const char* title;
        bool isOfBand;
        int steps;
    };
    static constexpr CRow kRows[] = {
        {"modThumpcraft.outgain", "Output gain", false, 48},
        {"modThumpcraft.drymix", "Dry mix", false, 20},
        {"modThumpcraft.xo-count", "Band count", false, 0},
        {"modThumpcraft.gate-enable", "Gate enable", false, 0},
        {"modThumpcraft.gate-threshold", "Gate threshold", false, 60},
        {"modThumpcraft.comp-enable", "Compressor enable", true, 0},
        {"modThumpcraft.comp-threshold", "Compressor threshold", true, 72},
        {"modThumpcraft.comp-ratio", "Compressor ratio", true, 40},
        {"modThumpcraft.sat-enable", "Saturator enable", true, 0},
        {"modThumpcraft.sat-drive", "Saturator drive", true, 66},
        {"modThumpcraft.bandgain", "Band output gain", true, 36},
        {"modThumpcraft.clip-enable", "Output clipper enable", false, 0},
        {"bypass-enable", "Bypass", false, 0},
    };
    for (const CRow& row : kRows)
        m_controls.emplace_back(m_tree, row.path, row.title, row.isOfBand, row.steps);
}

std::string CMonitor::nameOf(const CControl& control) const
{
    const std::string name = control.view.name().empty() ? control.title : control.view.name();
    return control.isOfBand ? name + " " + std::to_string(m_band + 1) : name;
}

void CMonitor::move(int steps)
{
    CControl& control = m_controls[m_selected];
    control.view.move(m_group, elementOf(control), steps, nameOf(control), m_tag);
}

void CMonitor::select(int count)
{
    const auto size = static_cast<int>(m_controls.size());
    m_selected = static_cast<std::size_t>((static_cast<int>(m_selected) + count + size) % size);
}

void CMonitor::swapSides()
{
    const double side = m_side.value(0, 0);
    m_programs.swap();
    m_side.set(0, 0, side < 0.5 ? 1.0 : 0.0);
}

void CMonitor::moveInHistory(int count)
{
    qrb::CArray<qrb::CString> labels;
    std::int32_t position = 0;
    m_tree.client().getUndoHistory(labels, position);
    m_tree.client().setUndoHistoryPos(position + count);
}

bool CMonitor::press(char key)
{
    m_tree.fetch(); // what the key builds upon
    if (key != '+' && key != '=' && key != '-')
        ++m_tag;
    switch (key) {
    case 'q':
        return false;
    case 'j':
    case 'k':
        select(key == 'j' ? 1 : -1);
        break;
    case '+':
    case '=':
    case '-':
        move(key == '-' ? -1 : 1);
        break;
    case 'r': {
        CControl& control = m_controls[m_selected];
        control.view.reset(m_group, elementOf(control), nameOf(control));
        break;
    }
    case 'b':
        m_band = (m_band + 1) % std::max(static_cast<int>(m_bandCount.value(0, 0)), 1);
        break;
    case 'g':
        m_group = (m_group + 1) % std::max(m_tree.client().getGroupCount(), 1);
        break;
    case 'n':
    case 'p':
        m_programs.step(key == 'n' ? 1 : -1);
        break;
    case 'u':
    case 'y':
        moveInHistory(key == 'y' ? 1 : -1);
        break;
    case 'x':
        swapSides();
        break;
    case 'c':
        m_programs.putAside();
        break;
    case 'd':
        m_programs.reset();
        break;
    default:
        break;
    }
    return true;
}

CPicture CMonitor::picture() const
{
    CPicture picture;
    const qrb::CAudioInterfaceClient& client = m_tree.client();
    picture.preset = printable(m_presetName.text(0, 0));
    picture.program = m_programs.current();
    picture.programCount = static_cast<int>(m_programs.names().size());
    picture.side = m_side.value(0, 0) < 0.5 ? 'A' : 'B';
    picture.sampleRate = client.getSampleRate();
    picture.inputs = client.getInputChannelCount();
    picture.outputs = client.getOutputChannelCount();
    picture.keys = client.getSidechainChannelCount();
    picture.group = printable(client.getGroupName(m_group).toUtf8());
    picture.band = m_band;
    picture.meters.push_back(metersOf("band", m_bandsIn, CPicture::EMeter::level, true));
    picture.meters.push_back(metersOf("out", m_out, CPicture::EMeter::level, false));
    picture.meters.push_back(metersOf("ratio", m_ratio, CPicture::EMeter::change, false));
    picture.meters.push_back(metersOf("gate", m_gate, CPicture::EMeter::reduction, false));
    picture.meters.push_back(metersOf("comp", m_compressor, CPicture::EMeter::reduction, true));
    picture.octaves = m_spectrum.levels(1);
    picture.spectrum = m_spectrum.levels(3);
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const CControl& control = m_controls[i];
        picture.controls.push_back(
            {printable(nameOf(control)), printable(control.view.text(m_group, elementOf(control))), i == m_selected});
    }
    qrb::CArray<qrb::CString> labels;
    std::int32_t position = 0;
    client.getUndoHistory(labels, position);
    for (const qrb::CString& label : labels)
        picture.history.push_back(printable(label.toUtf8()));
    picture.historyPosition = position;
    return picture;
}

} // namespace monitor
