// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CMonitorOptions.h"
#include "Tools/Monitor/CMonitorRun.h"
#include "Tools/Render/CProductModule.h"

#include <csignal>
#include <cstdio>
#include <monitorResources.h>
#include <string>
#include <vector>

namespace {

constexpr int kExitFailure = 2;

int fail(const std::string& error)
{
    std::fprintf(stderr, "thumpcraft-monitor: %s\n", error.c_str());
    return kExitFailure;
}

int endBy(int number)
{
    std::signal(number, SIG_DFL);
    std::raise(number);
    return kExitFailure;
}

} // namespace

int main(int argc, char** argv)
{
    std::string error;
    const std::optional<monitor::CMonitorOptions> options =
        monitor::parseOptions(std::vector<std::string>(argv + 1, argv + argc), error);
    if (!options)
        return fail(error + " (--help shows the options)");
    if (options->isHelpWanted) {
        std::fputs(monitor::helpText().c_str(), stdout);
        return 0;
    }
    int endSignal = 0;
    {
        const render::CProductModule module(error, qrb::monitorResources());
        if (!module.isEntered())
            return fail(error);
        monitor::CMonitorRun run(*options);
        if (!run.run(error))
            return fail(error);
        endSignal = run.endSignal();
    }
    return endSignal == 0 ? 0 : endBy(endSignal);
}
