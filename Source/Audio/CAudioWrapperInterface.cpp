// SPDX-License-Identifier: GPL-3.0-or-later
// What an instance and the clients of its interface tell each other.
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioWrapper.h"
#include "Audio/Interface/CAudioInterfaceBase.h"

namespace qrb {

double CAudioWrapper::getSampleRate()
{
    return m_env->sampleRate();
}

void CAudioWrapper::disconnectClients()
{
    if (m_interfaceBase == nullptr)
        return;
    m_interfaceBase->disconnect(); // ends gestures, which is told
    m_interfaceBase->setDataProvider(nullptr);
}

void CAudioWrapper::noteNewSetup()
{
    m_isSetupNew = true;
    m_paramCollector->wakeDeferred(); // the owner's thread tells it
}

void CAudioWrapper::tellSetup()
{
    if (m_isSetupNew.exchange(false))
        m_interfaceBase->tellSetup();
}

void CAudioWrapper::setClientsActive(bool isActive)
{
    tellSetup();
    const bool isAlways = m_project.isVizAlwaysActive;
    if (!isActive)
        m_interfaceBase->clearClients();
    // What is always active starts anew after a stop.
    if (isActive != isAlways)
        m_interfaceBase->startViz();
    else if (!isActive)
        m_interfaceBase->stopViz();
}

} // namespace qrb
