// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderOptions.h"

#include <charconv>
#include <cmath>
#include <span>

namespace render {

namespace {

template <class T>
bool parseWhole(const std::string& text, T& out)
{
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), out);
    return status == std::errc() && end == text.data() + text.size() && !text.empty();
}

/// Takes ":NUMBER" off the end of `path` if it is there. False if something else stands behind a colon.
bool splitIndices(std::string& path, CSetting& setting)
{
    const std::size_t first = path.find(':');
    if (first == std::string::npos)
        return true;
    const std::string indices = path.substr(first + 1);
    path.resize(first);
    const std::size_t second = indices.find(':');
    const std::string group = indices.substr(0, second);
    if (!parseWhole(group, setting.group) || setting.group < 0)
        return false;
    if (second == std::string::npos)
        return true;
    return parseWhole(indices.substr(second + 1), setting.element) && setting.element >= 0;
}

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

/// Walks the words; each option takes what it needs from the front.
class CArgReader {
public:
    CArgReader(std::span<const std::string> args, std::string& error) : m_args(args), m_error(error) {}

    [[nodiscard]] bool atEnd() const { return m_next == m_args.size(); }
    const std::string& take() { return m_args[m_next++]; }

    /// The next word as the value of `option`; false with an error if there is none.
    bool takeValue(const std::string& option, std::string& out)
    {
        if (atEnd()) {
            m_error = "option '" + option + "' needs a value";
            return false;
        }
        out = take();
        return true;
    }

private:
    std::span<const std::string> m_args;
    std::string& m_error;
    std::size_t m_next = 0;
};

bool takeSetting(CArgReader& args, const std::string& option, std::vector<CSetting>& out, double seconds,
                 std::string& error)
{
    std::string text;
    if (!args.takeValue(option, text))
        return false;
    std::optional<CSetting> setting = parseSetting(text, error);
    if (!setting)
        return false;
    setting->seconds = seconds;
    out.push_back(std::move(*setting));
    return true;
}

bool takeEvent(CArgReader& args, const std::string& option, std::vector<CSetting>& out, std::string& error)
{
    std::string time;
    double seconds = 0.0;
    if (!args.takeValue(option, time))
        return false;
    if (!parseWhole(time, seconds) || !std::isfinite(seconds) || seconds < 0.0) {
        error = "'" + time + "' is no time in seconds (option '" + option + "')";
        return false;
    }
    return takeSetting(args, option, out, seconds, error);
}

bool takeBlockSize(CArgReader& args, const std::string& option, std::size_t& out, std::string& error)
{
    std::string text;
    if (!args.takeValue(option, text))
        return false;
    if (!parseWhole(text, out) || out == 0 || out > kMaxBlockSize) {
        error = "'" + text + "' is no block size from 1 to " + std::to_string(kMaxBlockSize);
        return false;
    }
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

bool takeRate(CArgReader& args, const std::string& option, double& out, std::string& error)
{
    std::string text;
    if (!args.takeValue(option, text))
        return false;
    if (!parseWhole(text, out) || !(out >= 1000.0 && out <= 1e6)) {
        error = "'" + text + "' is no sample rate from 1000 to 1000000 Hz";
        return false;
    }
    return true;
}

/// The path of a file; another one than that of an option before it makes no sense.
bool takeFile(CArgReader& args, const std::string& option, std::string& out, std::string& error)
{
    std::string path;
    if (!args.takeValue(option, path))
        return false;
    if (path.empty() || !out.empty()) {
        error = path.empty() ? "option '" + option + "' needs a value" : "option '" + option + "' is given twice";
        return false;
    }
    out = path;
    return true;
}

bool takeOption(const std::string& option, CArgReader& args, CRenderOptions& out, std::string& error)
{
    if (option == "--set")
        return takeSetting(args, option, out.sets, 0.0, error);
    if (option == "--at")
        return takeEvent(args, option, out.events, error);
    if (option == "--sidechain")
        return args.takeValue(option, out.sidechainFile);
    if (option == "--preset")
        return args.takeValue(option, out.presetName.emplace());
    if (option == "--bank")
        return takeFile(args, option, out.bankFile, error);
    if (option == "--preset-file")
        return takeFile(args, option, out.presetFiles.emplace_back(), error);
    if (option == "--save-preset")
        return takeFile(args, option, out.savePresetFile, error);
    if (option == "--block")
        return takeBlockSize(args, option, out.blockSize, error);
    if (option == "--format")
        return takeFormat(args, option, out.format, error);
    if (option == "--rate")
        return takeRate(args, option, out.sampleRate, error);
    if (option == "--double")
        out.useDouble = true;
    else if (option == "--raw")
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
    else {
        error = "unknown option '" + option + "'";
        return false;
    }
    return true;
}

} // namespace

std::optional<CSetting> parseSetting(const std::string& text, std::string& error)
{
    const std::size_t equals = text.find('=');
    CSetting setting;
    if (equals != std::string::npos) {
        setting.path = text.substr(0, equals);
        setting.text = text.substr(equals + 1);
    }
    if (equals == std::string::npos || !splitIndices(setting.path, setting) || setting.path.empty()) {
        error = "'" + text + "' is not of the form PATH[:GROUP[:ELEMENT]]=TEXT";
        return std::nullopt;
    }
    return setting;
}

std::optional<CRenderOptions> parseOptions(const std::vector<std::string>& words, std::string& error)
{
    CRenderOptions options;
    std::vector<std::string> files;
    CArgReader args(words, error);
    bool onlyFiles = false;
    while (!args.atEnd()) {
        const std::string& word = args.take();
        if (!onlyFiles && word == "--")
            onlyFiles = true;
        else if (onlyFiles || word.size() < 2 || word[0] != '-')
            files.push_back(word);
        else if (!takeOption(word, args, options, error))
            return std::nullopt;
        if (options.task == ETask::help)
            return options;
    }
    if (options.task == ETask::render && files.empty() && !options.savePresetFile.empty())
        options.task = ETask::save;
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

  --preset NAME                              start from this built-in preset, or from this one of --bank
  --bank FILE                                a bank or list of presets; without --preset its first one is used
  --preset-file FILE                         start from this preset, of the whole or of a panel; repeatable
  --set PATH[:GROUP[:ELEMENT]]=TEXT          a parameter's value, PATH below plugin.modMain; repeatable
  --at SECONDS PATH[:GROUP[:ELEMENT]]=TEXT   the same as an event at that time; repeatable
  --save-preset FILE                         save the settings before the first sample as a preset; IN and OUT may be left out
  --sidechain FILE                           key signal, behind the main channels
  --block N                                  samples a block (default 512)
  --double                                   64-bit host buffers (default 32-bit)
  --format float|double|pcm16|pcm24          samples of the output file (default float)
  --raw                                      keep the latency; otherwise the output is aligned and as long as the input
  --list [IN]                                print every parameter: path, groups x elements, value, range, default
  --presets                                  print the names of the presets, built in or of --bank
  --latency [IN]                             print the latency in samples and stop
  --rate HZ                                  sample rate where there is no file (default 44100)
  --json                                     the summary (or list, or latency) for machines
  --help                                     this text

Presets come in the order bank, files; --set changes what they have set. Channels go straight through unless a preset's
file or --set says where they go.
IN is anything libsndfile reads, with 1 to 8 channels. OUT is WAV, or the type its name tells (.flac, .aiff, .w64, ...).
Exit status: 0 done, 2 something was wrong (one line on stderr tells what; no output file is left behind).
)";
}

} // namespace render
