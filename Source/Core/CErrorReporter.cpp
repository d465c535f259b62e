// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CErrorReporter.h"

#include "Platform/StandardError.h"

#include <atomic>
#include <string>

namespace qrb {

namespace {

constinit std::atomic<CErrorReporter*> g_current{nullptr};

} // namespace

CErrorReporter::CErrorReporter() noexcept : m_before(g_current.exchange(this)) {}

CErrorReporter::~CErrorReporter()
{
    g_current.store(m_before);
}

CErrorReporter* CErrorReporter::current() noexcept
{
    return g_current.load();
}

void CErrorReporter::writeToStandardError(const CString& details)
{
    const std::string text = std::string(kTitle) + "\n" + kLead + "\n" + details.toUtf8() + "\n";
    platform::writeStandardError(text);
}

} // namespace qrb
