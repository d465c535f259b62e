// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CFileHost.h"

#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"

namespace render {

bool CFileHost::open(std::string& error)
{
    return CFilePlayer::open(error) && m_presets.readFiles(error);
}

bool CFileHost::prepare(bool isOffline, std::string& error)
{
    if (qrb::CErrorPtr failed = m_instance.init()) {
        error = "the instance cannot be built: " + failed->line(0).toUtf8();
        return false;
    }
    prepareBuffers();
    const bool isDouble = options().useDouble;
    m_instance.reportChannels(channelCount(), keyCount());
    m_instance.setSampleRate(sampleRate());
    m_instance.setOffline(isOffline);
    m_instance.setInputs({channelCount(), isDouble, false}, {keyCount(), isDouble, false},
                         keyBuffers().pointers.data());
    m_instance.setOutputs({channelCount(), isDouble, false});
    m_instance.start(); // parameters of nodes get their definitions with the nodes
    if (!applySettings(error))
        return false;
    m_instance.stop(); // what was set is in force from the first sample, with nothing fading
    m_instance.start();
    runOwner();
    return collectEvents(error);
}

bool CFileHost::applySettings(std::string& error)
{
    if (!state().empty()) {
        qrb::CMemoryReaderStatic reader({reinterpret_cast<const std::uint8_t*>(state().data()), state().size()});
        if (const qrb::CErrorPtr failed = m_instance.loadState(reader)) {
            error = "the state '" + options().stateFile + "' cannot be used: " + failed->line(0).toUtf8();
            return false;
        }
    }
    if (!m_presets.activate(m_instance, error))
        return false;
    for (const CSetting& setting : options().sets)
        if (!m_instance.apply(setting, error))
            return false;
    return true;
}

bool CFileHost::collectEvents(std::string& error)
{
    for (const CSetting& setting : options().events) {
        int index = 0;
        double value = 0.0;
        if (!m_instance.resolveEvent(setting, index, value, error) || !addEvent(setting, index, value, error))
            return false;
    }
    sortEvents();
    return true;
}

void CFileHost::queueEvent(int offset, int index, double value)
{
    m_instance.addEvent({offset, qrb::EExternalEventKind::parameter, index, value});
}

void CFileHost::processBlock(int frames)
{
    m_instance.processBlock(inBuffers().pointers.data(), outBuffers().pointers.data(), frames);
}

void CFileHost::runOwner()
{
    m_instance.runOwner();
}

bool CFileHost::saveState(std::string& bytes, std::string& error)
{
    qrb::CWriteSeqBuffer buffer;
    qrb::CByteArray whole;
    if (const qrb::CErrorPtr failed = m_instance.saveState(buffer)) {
        error = "the state cannot be saved: " + failed->line(0).toUtf8();
        return false;
    }
    buffer.getContiguous(whole);
    bytes.assign(whole.begin(), whole.end());
    return true;
}

bool CFileHost::savePreset(std::string& bytes, std::string& error)
{
    return m_presets.take(m_instance, bytes, error);
}

} // namespace render
