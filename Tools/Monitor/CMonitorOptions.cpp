// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CMonitorOptions.h"

#include "Tools/Monitor/Client/CMonitor.h"

namespace monitor {

namespace {

constexpr int kMaxFrames = 10'000'000;
constexpr double kMaxFps = 100.0;

render::EOption takeOption(const std::string& option, render::CArgReader& args, CMonitorOptions& out,
                           std::string& error)
{
    using render::EOption;
    using render::takenIf;
    if (const EOption taken = render::takeHostOption(option, args, out, error); taken != EOption::unknown)
        return taken;
    if (option == "--frames")
        return takenIf(args.takeNumber(option, 1, kMaxFrames, "number from 1 to 10000000", out.frames.emplace()));
    if (option == "--fps")
        return takenIf(args.takeNumber(option, 1.0, kMaxFps, "number from 1 to 100", out.fps));
    if (option == "--keys")
        return takenIf(args.takeValue(option, out.keys));
    if (option == "--once")
        out.isPlayedOnce = true;
    else if (option == "--help" || option == "-h")
        out.isHelpWanted = true;
    else
        return EOption::unknown;
    return out.isHelpWanted ? EOption::last : EOption::taken;
}

} // namespace

std::optional<CMonitorOptions> parseOptions(const std::vector<std::string>& words, std::string& error)
{
    CMonitorOptions options;
    std::vector<std::string> files;
    const auto take = [&](const std::string& option, render::CArgReader& args) {
        return takeOption(option, args, options, error);
    };
    if (!render::readCommandLine(words, take, files, error))
        return std::nullopt;
    if (options.isHelpWanted)
        return options;
    if (files.size() != 1)
        error = files.empty() ? "a file to play is needed" : "too many files: '" + files[1] + "'";
    else if (!options.keys.empty() && !options.frames)
        error = "--keys needs --frames; a terminal has keys of its own";
    else {
        options.inFile = files[0];
        return options;
    }
    return std::nullopt;
}

std::string helpText()
{
    return R"(Plays an audio file through a plug-in instance and watches it from outside, as an editor does: meters, gain reduction,
spectrum, settings, history. Nothing is heard; the file is played over and over at the pace of its sample rate.

    thumpcraft-monitor [options] FILE

  --fps N                                    pictures a second (default 20)
  --once                                     end with the file
  --frames N                                 no terminal: N pictures as plain lines, as fast as they can be had
  --keys TEXT                                keys to press then, one a picture; "." lets one pass
  --preset NAME                              start from this built-in preset, or from this one of --bank
  --bank FILE                                a bank or list of presets; without --preset its first one is used
  --preset-file FILE                         start from this preset, of the whole or of a panel; repeatable
  --set PATH[:GROUP[:ELEMENT]]=TEXT          a parameter's value, PATH below plugin.modMain; repeatable
  --at SECONDS PATH[:GROUP[:ELEMENT]]=TEXT   the same as an event at that time of the first round; repeatable
  --state FILE                               start from this state, as hosts save it
  --sidechain FILE                           key signal, behind the main channels
  --block N                                  samples a block (default 512)
  --double                                   64-bit host buffers (default 32-bit)
  --help                                     this text

Keys; arrows do as well for settings, and Ctrl-C for the end:

)" + std::string(CMonitor::keyHelp()) +
           R"(
Bars are mean levels, with the held peak as a mark: "band" what goes into each band, "out" the output, "ratio" output to
input, "gate" and "comp" the gain they make, the compressor's against its own long-term mean. Numbers are dB. Of a line
"2/3" is channel 2, band 3.
With --frames time is the audio's, so that the same command prints the same lines; keys work from the next picture on.
FILE is anything libsndfile reads, with 1 to 8 channels.
Exit status: 0 done, 2 something was wrong (one line on stderr tells what). A signal ends it after the terminal is as before.
)";
}

} // namespace monitor
