// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModLatencyUniformer.h"

#include "Core/CLog.h"
#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

namespace qrb {

namespace {

constexpr int kBlockSize = 512;
constexpr double kFadeSeconds = 0.015;

} // namespace

CErrorPtr CModLatencyUniformerDef::init()
{
    QRB_TRY(CModDef<CModLatencyUniformer>::init());
    const CString text = getAttrString("latencies");
    m_rows.clear();
    for (const CString& item : split(text, ';', EEmpty::drop)) {
        const CArray<CString> pair = split(item, '=', EEmpty::keep);
        CRow row{};
        if (pair.size() != 2 || !parseInteger(pair[0].trimmed(), row.sampleRate) ||
            !parseInteger(pair[1].trimmed(), row.samples))
            return QRB_ERROR("@qrbstr_CModLatencyUniformerDef_init_InvalidLatencies "
                             "Invalid 'latencies' attribute value '%1' specified.",
                             text);
        m_rows.append(row);
    }
    return nullptr;
}

int CModLatencyUniformerDef::targetLatency(double sampleRate) const
{
    const int rate = roundToInt(sampleRate);
    for (const CRow& row : m_rows)
        if (row.sampleRate >= rate)
            return row.samples < 0 ? kUnsupported : row.samples;
    return kUnsupported;
}

void CModLatencyUniformerModule::start()
{
    m_delays.setCount(outputCount(), pool());
}

void CModLatencyUniformerModule::reset()
{
    m_delays.reset();
}

int CModLatencyUniformerModule::missingLatency() const
{
    const int target = static_cast<const CModLatencyUniformerDef&>(node().definition()).targetLatency(sampleRate());
    if (target == CModLatencyUniformerDef::kUnsupported) {
        logFormat("Unsupported sample rate %f in LatencyUniformer", sampleRate());
        return 0;
    }
    const int missing = target - node().inputLatency();
    if (missing < 0) {
        logFormat("Too high latency %i at sample rate %f in LatencyUniformer", node().inputLatency(), sampleRate());
        return 0;
    }
    return missing;
}

void CModLatencyUniformerModule::update()
{
    const int missing = missingLatency();
    setLatency(missing);
    m_delays.set(kBlockSize, roundToInt(kFadeSeconds * sampleRate()), missing);
}

void CModLatencyUniformerModule::process()
{
    for (int i = 0; i < outputCount(); ++i)
        setOutput(i, m_delays.process(i, line(0, i)->buffer, blockLength()));
}

} // namespace qrb
