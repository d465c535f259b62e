// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderOptions.h"

#include <utility>

namespace render {

namespace {

bool parseFormat(const std::string& name, EFileFormat& out)
{
    if (name == "float")
        out = EFileFormat::float32;
    else if (name == "double")
        out = EFileFormat::float64;
    else if (name == "pcm16")
        out = EFileFormat::pcm16;
    else if (name == "pcm24")
        out = EFileFormat::pcm24;
    else
        return false;
    return true;
}

bool takeFormat(CArgReader& args, const std::string& option, EFileFormat& out, std::string& error)
{
    std::string text;
    if (!args.takeValue(option, text))
        return false;
    if (!parseFormat(text, out)) {
        error = "unknown format '" + text + "'; use float, double, pcm16 or pcm24";
        return false;
    }
    return true;
}

EOption takeOption(const std::string& option, CArgReader& args, CRenderOptions& out, std::string& error)
{
    if (const EOption taken = takeHostOption(option, args, out, error); taken != EOption::unknown)
        return taken;
    if (option == "--vst3")
        return takenIf(args.takeFile(option, out.moduleFile));
    if (option == "--save-preset")
        return takenIf(args.takeFile(option, out.savePresetFile));
    if (option == "--save-state")
        return takenIf(args.takeFile(option, out.saveStateFile));
    if (option == "--format")
        return takenIf(takeFormat(args, option, out.format, error));
    if (option == "--raw")
        out.isRaw = true;
    else if (option == "--json")
        out.isJson = true;
    else if (option == "--list")
        out.task = ETask::list;
    else if (option == "--latency")
        out.task = ETask::latency;
    else if (option == "--presets")
        out.task = ETask::presets;
    else if (option == "--help" || option == "-h")
        out.task = ETask::help;
    else
        return EOption::unknown;
    return out.task == ETask::help ? EOption::last : EOption::taken;
}

/// A hosted module takes no files of presets: those are the engine's.
bool checkModuleOptions(const CRenderOptions& options, std::string& error)
{
    const std::pair<bool, const char*> engineOnly[] = {{!options.bankFile.empty(), "--bank"},
                                                       {!options.presetFiles.empty(), "--preset-file"},
                                                       {!options.savePresetFile.empty(), "--save-preset"}};
    for (const auto& [isGiven, option] : engineOnly) {
        if (isGiven && !options.moduleFile.empty()) {
            error = std::string("option '") + option +
                    "' needs the engine itself; --state and --save-state work with --vst3";
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<CRenderOptions> parseOptions(const std::vector<std::string>& words, std::string& error)
{
    CRenderOptions options;
    std::vector<std::string> files;
    const auto take = [&](const std::string& option, CArgReader& args) {
        return takeOption(option, args, options, error);
    };
    if (!readCommandLine(words, take, files, error))
        return std::nullopt;
    if (options.task == ETask::help)
        return options;
    const bool isSaving = !options.savePresetFile.empty() || !options.saveStateFile.empty();
    if (options.task == ETask::render && files.empty() && isSaving)
        options.task = ETask::save;
    if (!checkModuleOptions(options, error))
        return std::nullopt;
    const std::size_t wanted = options.task == ETask::render ? 2 : files.size();
    if (files.size() != wanted || files.size() > 2) {
        error = files.size() > 2 ? "too many files: '" + files[2] + "'" : "an input and an output file are needed";
        return std::nullopt;
    }
    if (!files.empty())
        options.inFile = files[0];
    if (files.size() == 2)
        options.outFile = files[1];
    return options;
}

const char* helpText()
{
    return R"(Plays an audio file through a plug-in instance and writes what comes out.

    thumpcraft-render [options] IN OUT

  --vst3 PATH                                host this built module, as any host does, in place of the engine linked in
  --state FILE                               start from this state, as hosts save it
  --preset NAME                              start from this built-in preset, or from this one of --bank
  --bank FILE                                a bank or list of presets; without --preset its first one is used
  --preset-file FILE                         start from this preset, of the whole or of a panel; repeatable
  --set PATH[:GROUP[:ELEMENT]]=TEXT          a parameter's value, PATH below plugin.modMain or a host parameter's name
                                             (the only ones with --vst3); repeatable
      NAME=@VALUE                            a host parameter's normalised value, from 0 to 1
      Program=NAME                           the same as --preset NAME, but among the settings and events
  --at SECONDS PATH[:GROUP[:ELEMENT]]=TEXT   the same as an event at that time; repeatable
  --save-preset FILE                         save the settings before the first sample as a preset; IN and OUT may be left out
  --save-state FILE                          save them as a state for hosts
  --sidechain FILE                           key signal, behind the main channels
  --block N                                  samples a block (default 512)
  --double                                   64-bit host buffers (default 32-bit)
  --format float|double|pcm16|pcm24          samples of the output file (default float)
  --raw                                      keep the latency; otherwise the output is aligned and as long as the input
  --list [IN]                                print every parameter: path, groups x elements, value, range, default
                                             (with --vst3: every host parameter)
  --presets                                  print the names of the presets, built in or of --bank
  --latency [IN]                             print the latency in samples and stop
  --rate HZ                                  sample rate where there is no file (default 44100)
  --json                                     the summary (or list, or latency) for machines
  --help                                     this text

The state comes first, then presets in the order bank, files; --set changes what they have set. Channels go where a host's
layout of as many (mono to 7.1) takes them, unless a state, a preset's file or --set says where they go.
IN is anything libsndfile reads, with 1 to 8 channels. OUT is WAV, or the type its name tells (.flac, .aiff, .w64, ...).
Exit status: 0 done, 2 something was wrong (one line on stderr tells what; no output file is left behind).
)";
}

} // namespace render
