// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/PresetTool.h"

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/DocCompiler/ToolFiles.h"
#include "Tools/Product/BoundedFile.h"
#include "Tools/Product/CDocumentModule.h"
#include "Tools/QrbPreset/CNumberText.h"
#include "Tools/QrbPreset/CProductParams.h"
#include "Tools/QrbPreset/PresetText.h"

#include <cstdio>

namespace qrbpreset {

namespace {

constexpr int kFailure = 2;
/// Texts are several times as long as what they build.
constexpr std::size_t kMaxTextBytes = std::size_t{1} << 30;

constexpr const char* kHelp =
    R"(qrb-preset: builds files of presets from a text, and shows any such file as that text

  qrb-preset build [options] IN.xml OUT   the text to a preset, bank or list file
  qrb-preset check [options] IN.xml       the same without writing anything
  qrb-preset print [options] IN [OUT.xml] a file as text (standard output without OUT.xml)
  qrb-preset params [options] [REGISTRY]  the registries, or the parameters of one: path, groups x elements, default,
                                          range or names

Options:
  --document FILE    compiled SharedData.xml that declares the parameters, in place of the product's own
  --block NAME=FILE  file for a name that the document asks for, such as AppDataLocal_xotube-presets=voices.bin
  --block NAME       the same, an empty list
  -h, --help         this text

The text is XML; its root tells the kind of file: <preset>, <bank> of presets, or <list> of banks (or of presets, which
then are one bank without a name).

  <bank registry="k7rw" name="Master bank">
    <preset name="Loud &amp; Clear">                    <!-- what is not given is reset when the preset is loaded -->
      <param path="oversampling">2X</param>
      <section path="modThumpcraft">                <!-- in front of the paths within -->
        <param path="comp-threshold">-26.3, *, -18</param>
        <param path="comp-ratio">4:1, *, =0.76</param>
        <param path="outgain"><group>-1.5 dB</group><group>0</group></param>
      </section>
    </preset>
  </bank>

Values stand as the plug-in shows them, with or without the unit: "12 ms", "1.5 kHz", "On". A comma separates elements;
* is an element's default; each <group> is a channel group (index="N" skips to one). =N is the stored number itself, and
N is what counts where both stand: "1.31:1 =0.76336". A text with commas, or with blanks at its ends, goes in quotes,
where \" \\ \n \t and \x00 (any byte) are known; names and paths know these as well.
Printing adds definition="..." and type="number|text|raw" to parameters that the product lacks, and <raw> with
hexadecimal bytes where no values can stand for them, so that what is printed always builds the same content again.

Errors go to standard error, those in a text as file:line:column: message; the exit status is then 2 and nothing is
written.
)";

struct CArguments {
    std::vector<std::string> words;
    product::CDataFiles files;
    bool isHelp = false;
};

int fail(const std::string& message)
{
    std::fprintf(stderr, "qrb-preset: %s\n", message.c_str());
    return kFailure;
}

std::vector<std::uint8_t> emptyList()
{
    qrb::CWriteSeqBuffer content;
    qrb::CWriteSeqBuffer chunk;
    qrb::CByteArray bytes;
    (void)qrb::CAudioPresetList().save(content); // memory takes whatever is written
    content.getContiguous(bytes);
    (void)chunk.writeCompressedData(bytes.span(), qrb::kPresetListChunk);
    chunk.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

/// Takes a data file in place of a linked one. What is wrong, empty on success.
std::string addFile(CArguments& arguments, const std::string& name, const std::string& path)
{
    std::string content;
    std::string problem = product::readBoundedFile(path, product::kMaxFileBytes, content);
    arguments.files.read[name] = std::vector<std::uint8_t>(content.begin(), content.end());
    return problem;
}

std::string parseArguments(const std::vector<std::string>& words, CArguments& out)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        std::string problem;
        if (word == "-h" || word == "--help") {
            out.isHelp = true;
            return {};
        }
        if ((word == "--document" || word == "--block") && i + 1 == words.size())
            return "'" + word + "' needs a value";
        if (word == "--document") {
            problem = addFile(out, product::CDocumentModule::kDocument, words[++i]);
        } else if (word == "--block") {
            const std::string& block = words[++i];
            const std::size_t equals = block.find('=');
            if (equals == std::string::npos)
                out.files.read[block] = emptyList();
            else
                problem = addFile(out, block.substr(0, equals), block.substr(equals + 1));
        } else if (word.size() > 1 && word[0] == '-') {
            problem = "unknown option '" + word + "'; see qrb-preset --help";
        } else {
            out.words.push_back(word);
        }
        if (!problem.empty())
            return problem;
    }
    return {};
}

int writeOut(const std::string& text)
{
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return isWritten && std::fflush(stdout) == 0 ? 0 : fail("cannot write to standard output");
}

int build(const std::vector<std::string>& words, const CProductParams& params)
{
    std::string text;
    if (const std::string problem = product::readBoundedFile(words[1], kMaxTextBytes, text); !problem.empty())
        return fail(problem);
    const CBuilt built = buildText(std::move(text), words[1], params);
    for (const qrbdoc::Diagnostic& warning : built.warnings)
        std::fprintf(stderr, "%s (warning)\n", warning.text().c_str());
    for (const qrbdoc::Diagnostic& error : built.errors)
        std::fprintf(stderr, "%s\n", error.text().c_str());
    if (!built.file)
        return kFailure;
    std::string bytes;
    std::string problem;
    if (!product::writePresetFile(*built.file, bytes, problem))
        return fail(words[1] + ": " + problem);
    if (words.size() == 3)
        problem = qrbdoc::writeFileWhole(words[2], bytes);
    return problem.empty() ? 0 : fail(problem);
}

int print(const std::vector<std::string>& words, const CProductParams& params)
{
    std::string bytes;
    std::string problem = product::readBoundedFile(words[1], product::kMaxFileBytes, bytes);
    if (!problem.empty())
        return fail(problem);
    product::CPresetFile file;
    if (!product::readPresetFile(bytes, file, problem))
        return fail(words[1] + ": " + problem);
    std::string again;
    if (!product::writePresetFile(file, again, problem) || again != bytes)
        std::fprintf(stderr,
                     "qrb-preset: %s: another program has packed this file; building the text gives the same "
                     "content, packed in other bytes (warning)\n",
                     words[1].c_str());
    const std::string text = printText(file, params);
    if (words.size() == 2)
        return writeOut(text);
    problem = qrbdoc::writeFileWhole(words[2], text);
    return problem.empty() ? 0 : fail(problem);
}

std::string defaultsText(const qrb::CAudioParamInfo& info)
{
    std::string text;
    const std::span<const double> cells = info.defaultCells();
    const auto size = static_cast<std::size_t>(info.format.elementSize);
    for (std::size_t i = 0; i < cells.size() && info.format.type != qrb::EAudioParamType::raw; ++i) {
        text += i == 0 ? "" : i % size == 0 ? ", " : " | ";
        text += info.format.hasItems() ? info.defaults.text(0, static_cast<std::int32_t>(i)).toUtf8()
                                       : CNumberText(&info, static_cast<int>(i % size)).shown(cells[i]);
    }
    return text;
}

std::string domainText(const qrb::CAudioParamInfo& info)
{
    if (info.format.hasItems())
        return info.format.type == qrb::EAudioParamType::text ? "text" : "bytes";
    std::string names;
    for (const qrb::CString& name : info.longStateNames)
        names += (names.empty() ? "" : ", ") + name.toUtf8();
    return names.empty() ? CNumberText(&info, 0).range() : names;
}

int listParams(const std::vector<std::string>& words, const CProductParams& params)
{
    std::string text;
    if (words.size() == 1) {
        for (const CRegistry& registry : params.registries())
            text += registry.id + std::string(registry.id.size() < 6 ? 6 - registry.id.size() : 1, ' ') +
                    registry.naming + ", " + registry.hierarchy.toUtf8() + "*\n";
        return writeOut(text);
    }
    const CRegistry* const registry = params.registry(words[1]);
    if (registry == nullptr)
        return fail("there is no registry '" + words[1] + "' (qrb-preset params lists all)");
    for (const CProductParams::CMember& member : params.members(*registry)) {
        const qrb::CAudioParamFormat& format = member.info->format;
        text += member.key + "  " + (format.isSingleGroup ? "1" : "n") + " x " + (format.isSingleElement ? "1" : "n") +
                "  default " + defaultsText(*member.info) + "  (" + domainText(*member.info) + ")\n";
    }
    return writeOut(text);
}

} // namespace

int runTool(const std::vector<std::string>& words, std::span<const qrb::CResourceRow> linked)
{
    CArguments arguments;
    arguments.files.linked = {linked};
    if (const std::string problem = parseArguments(words, arguments); !problem.empty())
        return fail(problem);
    if (arguments.isHelp)
        return writeOut(kHelp);
    const std::vector<std::string>& told = arguments.words;
    const std::string command = told.empty() ? std::string() : told[0];
    const bool isBuild = (command == "build" && told.size() == 3) || (command == "check" && told.size() == 2);
    const bool isPrint = command == "print" && (told.size() == 2 || told.size() == 3);
    const bool isParams = command == "params" && told.size() <= 2;
    if (!isBuild && !isPrint && !isParams) {
        std::fputs(kHelp, stderr);
        return kFailure;
    }
    std::string error;
    const product::CDocumentModule module(std::move(arguments.files), error);
    CProductParams params;
    if (!module.isEntered() || !params.load(error))
        return fail(error);
    return isBuild ? build(told, params) : isPrint ? print(told, params) : listParams(told, params);
}

} // namespace qrbpreset
