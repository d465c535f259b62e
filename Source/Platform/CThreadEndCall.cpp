// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CThreadEndCall.h"

#include <pthread.h>
#include <type_traits>

namespace qrb::platform {

static_assert(std::is_same_v<pthread_key_t, unsigned>);

bool CThreadEndCall::prepare()
{
    if (!m_isPrepared)
        m_isPrepared = pthread_key_create(&m_key, &CThreadEndCall::tell) == 0;
    return m_isPrepared;
}

bool CThreadEndCall::wantEnd()
{
    return m_isPrepared && pthread_setspecific(m_key, this) == 0;
}

void CThreadEndCall::dismiss()
{
    if (m_isPrepared)
        pthread_key_delete(m_key);
    m_isPrepared = false;
}

void CThreadEndCall::tell(void* self)
{
    static_cast<CThreadEndCall*>(self)->m_call();
}

} // namespace qrb::platform
