// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderJob.h"
#include "Tools/Render/CRenderOptions.h"

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int kExitFailure = 2;

int fail(const std::string& error)
{
    std::fprintf(stderr, "thumpcraft-render: %s\n", error.c_str());
    return kExitFailure;
}

} // namespace

int main(int argc, char** argv)
{
    std::string error;
    const std::optional<render::CRenderOptions> options =
        render::parseOptions(std::vector<std::string>(argv + 1, argv + argc), error);
    if (!options)
        return fail(error + " (--help shows the options)");
    if (options->task == render::ETask::help) {
        std::fputs(render::helpText(), stdout);
        return 0;
    }
    std::optional<render::CProductModule> engine;
    if (options->moduleFile.empty() && !engine.emplace(error).isEntered())
        return fail(error);
    render::CRenderJob job(*options);
    return job.run(error) ? 0 : fail(error);
}
