// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Support/CTempFolders.h"
#include "Tools/Product/CDocumentModule.h"
#include "Tools/Product/CPayloadReader.h"
#include "Tools/QrbPreset/CProductParams.h"
#include "Tools/QrbPreset/PresetText.h"
#include "Tools/QrbPreset/PresetTool.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <productResources.h>
#include <random>

namespace {

using namespace qrbpreset;

constexpr std::uint32_t kListId = 'a' | 'l' << 8 | 's' << 16 | 't' << 24;

std::string bytesOf(const product::CPresetFile& file)
{
    std::string bytes;
    std::string error;
    EXPECT_TRUE(product::writePresetFile(file, bytes, error)) << error;
    return bytes;
}

class QrbPreset : public testing::Test {
protected:
    QrbPreset() : m_module(product::CDataFiles{{qrb::productResources()}, {}}, m_error)
    {
        EXPECT_TRUE(m_module.isEntered() && m_params.load(m_error)) << m_error;
    }

    /// The file that a text builds; a bank without presets and the errors as its name if it does not.
    product::CPresetFile built(const std::string& text)
    {
        CBuilt result = buildText(text, "t", m_params);
        m_warnings = result.warnings.size();
        if (result.file)
            return std::move(*result.file);
        product::CPresetFile failed;
        for (const qrbdoc::Diagnostic& error : result.errors)
            failed.banks.resize(1), failed.banks[0].name += error.text() + "\n";
        return failed;
    }

    std::string errorsOf(const std::string& text) { return built(text).banks.at(0).name; }

    /// Values of the parameter in the first preset that a text builds; empty storage if it is not there.
    qrb::CAudioParamStorage values(const std::string& text, const std::string& id, const std::string& key)
    {
        qrb::CAudioParamStorage storage;
        const product::CPresetFile file = built(text);
        EXPECT_FALSE(file.banks.at(0).presets.empty()) << file.banks.at(0).name;
        const qrb::CAudioParamInfo* const info = m_params.find(m_params.registry(id), key);
        for (const product::CBank& bank : file.banks)
            for (const product::CPreset& preset : bank.presets)
                for (const product::CItem& item : preset.items)
                    if (item.key == key) {
                        const auto* const data = reinterpret_cast<const std::uint8_t*>(item.bytes.data());
                        EXPECT_FALSE(qrb::CAudioParam::readSaved({data, item.bytes.size()}, *info, storage));
                        return storage;
                    }
        return storage;
    }

    /// Prints, builds and reads again; gives the text.
    std::string expectSurvives(const product::CPresetFile& file)
    {
        const std::string bytes = bytesOf(file);
        product::CPresetFile read;
        std::string error;
        EXPECT_TRUE(product::readPresetFile(bytes, read, error)) << error;
        std::string text = printText(read, m_params);
        EXPECT_EQ(bytesOf(built(text)), bytes) << text << errorsOf(text);
        return text;
    }

    std::string m_error;
    product::CDocumentModule m_module;
    CProductParams m_params;
    std::size_t m_warnings = 0;
};

/// Presets of everything that files may hold: values at odd places, wrong shapes, unknown keys, bytes that are no text.
class CRandomFile {
public:
    CRandomFile(const CProductParams& params, unsigned seed) : m_params(params), m_random(seed) {}

    product::CPresetFile make()
    {
        product::CPresetFile file;
        file.kind = static_cast<product::EFileKind>(upTo(2));
        file.banks.resize(file.kind == product::EFileKind::list ? static_cast<std::size_t>(upTo(2)) : 1);
        file.emptyCount = file.kind == product::EFileKind::list && file.banks.empty() ? -upTo(3) : 0;
        for (product::CBank& bank : file.banks) {
            bank.name = file.kind == product::EFileKind::preset || upTo(1) == 0 ? "" : bytes();
            bank.presets.resize(file.kind == product::EFileKind::preset ? 1 : static_cast<std::size_t>(upTo(3)));
            for (product::CPreset& preset : bank.presets)
                fill(preset);
        }
        return file;
    }

private:
    int upTo(int last) { return std::uniform_int_distribution(0, last)(m_random); }

    std::string bytes()
    {
        static const char* const kPieces[] = {"Mix",      "&<>\"'",           "\\x",  "\t\r\n",  " ",
                                              "\xC3\xA4", "\xF0\x9F\x8E\xB5", "\xFF", ".",       ":",
                                              ", =|*",    "\xED\xA0",         "]]>",  "\x01\x7F"};
        std::string text;
        for (int i = upTo(4); i > 0; --i)
            text += kPieces[upTo(static_cast<int>(std::size(kPieces)) - 1)];
        return upTo(9) == 0 ? text + std::string(1, '\0') : text;
    }

    void fill(product::CPreset& preset)
    {
        const CRegistry& registry = m_params.registries()[static_cast<std::size_t>(upTo(6))];
        preset.name = upTo(5) > 0 ? registry.id + ":" + bytes() : bytes();
        for (const CProductParams::CMember& member : m_params.members(registry))
            if (upTo(1) == 0)
                preset.items.push_back({upTo(15) == 0 ? bytes() : member.key, blob(*member.info)});
        if (upTo(3) > 0)
            preset.sortItems();
    }

    std::string blob(const qrb::CAudioParamInfo& info)
    {
        std::string out;
        product::appendBlock(out, upTo(15) == 0 ? bytes() : info.definitionPath.toUtf8());
        if (upTo(15) == 0)
            return out + bytes();
        qrb::CAudioParamStorage storage;
        qrb::CAudioParamFormat format = info.format;
        if (upTo(15) == 0)
            format = {.elementSize = 3};
        storage.setFormat(format);
        const int groups = upTo(2);
        for (int group = 0; group < groups; ++group) {
            qrb::CAudioParamData data;
            std::vector<double> cells(static_cast<std::size_t>(upTo(3) * format.elementSize));
            for (double& cell : cells)
                cell = format.hasItems() ? item(format.type, data) : number(info);
            qrb::CAudioParamUpdate record;
            record.group = group == 0 ? qrb::kAudioParamTemplateGroup : group;
            record.elementCount = static_cast<std::int32_t>(cells.size()) / format.elementSize;
            record.format = format;
            record.values = cells.data();
            record.data = &data;
            EXPECT_TRUE(storage.apply(record));
        }
        qrb::CWriteSeqBuffer written;
        EXPECT_FALSE(storage.save(written));
        qrb::CByteArray content;
        written.getContiguous(content);
        return out.append(reinterpret_cast<const char*>(content.data()), content.size());
    }

    double item(qrb::EAudioParamType type, qrb::CAudioParamData& data)
    {
        const std::string text = bytes();
        return type == qrb::EAudioParamType::text
                   ? data.addText(qrb::CString::fromUtf8(text))
                   : data.addRaw({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }

    double number(const qrb::CAudioParamInfo& info)
    {
        const auto& bounds = info.components[0];
        switch (upTo(6)) {
        case 0:
            return std::bit_cast<double>(std::uniform_int_distribution<std::uint64_t>()(m_random));
        case 1:
            return std::nan("");
        case 2:
            return upTo(1) == 0 ? -0.0 : bounds.max;
        case 3:
            return std::floor(bounds.min + 1.0);
        default:
            return bounds.min + (bounds.max - bounds.min) * upTo(1000) / 1000.0;
        }
    }

    const CProductParams& m_params;
    std::mt19937 m_random;
};

TEST_F(QrbPreset, WhatIsPrintedBuildsTheSameBytes)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        expectSurvives(CRandomFile(m_params, seed).make());
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

TEST_F(QrbPreset, ValuesAreReadAsUsersWriteThem)
{
    struct CRow {
        const char* id;
        const char* key;
        const char* text;
        std::vector<double> wanted;
    };
    const double half = std::exp(-6.0 / 8.685889638065037);
    for (const CRow& row : std::initializer_list<CRow>{
             {"k7rw", "modThumpcraft.outgain", "-6 dB, -6.0, *", {half, half, 1.0}},
             {"k7rw", "modThumpcraft.comp-attack", "60 ms,*, =0.25", {60 * 0.001, 20 * 0.001, 0.25}},
             {"k7rw", "modThumpcraft.comp-ratio", "4:1, 1:2, 1.31:1 =0.76336", {0.25, 2.0, 0.76336}},
             {"k7rw", "modThumpcraft.xo-freq", "1.5 kHz, 2k, 440Hz", {1500.0, 2000.0, 440.0}},
             {"k7rw", "modThumpcraft.drymix", "12.5 %", {0.125}},
             {"k7rw", "modThumpcraft.comp-enable", "On, off, 1", {1.0, 0.0, 1.0}},
             // A name goes before a number that it looks like.
             {"k7rw", "modThumpcraft.xo-count", "1", {0.0}},
             {"k7rw", "modThumpcraft.xo-type", "-24", {2.0}},
             {"QBSP", "block-size", "64", {0.0}},
             {"k7rwb", "knee", "-->=1 <!-- the default is 12", {}},
         }) {
        std::string text = std::string("<preset name='x' registry='") + row.id + "'><param path='" + row.key + "'>" +
                           row.text + "</param></preset>";
        if (row.wanted.empty()) {
            EXPECT_NE(errorsOf(text), "");
            continue;
        }
        const qrb::CAudioParamStorage found = values(text, row.id, row.key);
        const std::span<const double> cells = found.cells(0);
        EXPECT_EQ(std::vector<double>(cells.begin(), cells.end()), row.wanted) << row.key;
    }
}

TEST_F(QrbPreset, GroupsTextsAndSectionsGoWhereTheyAreAddressed)
{
    const std::string text = "<list registry='k7rwb'><!-- c --><preset name='One'>"
                             "<param path='knee'><group>1, <!-- c -->2</group><group index='3'>4</group></param>"
                             "<param path='mode-name'>Soft, \"a, \\\"b\\x41\", \"\"</param></preset></list>";
    const qrb::CAudioParamStorage knee = values(text, "k7rwb", "knee");
    EXPECT_EQ(knee.groupCount(), 4);
    EXPECT_EQ(knee.cells(0)[1], 2.0);
    EXPECT_EQ(knee.elementCount(1), 0);
    EXPECT_EQ(knee.cells(3)[0], 4.0);
    const qrb::CAudioParamStorage names = values(text, "k7rwb", "mode-name");
    EXPECT_EQ(names.text(0, 0), "Soft");
    EXPECT_EQ(names.text(0, 1), "a, \"bA");
    EXPECT_EQ(names.elementCount(0), 3);
    EXPECT_EQ(built(text).banks[0].presets[0].name, "k7rwb:One");
    EXPECT_EQ(m_warnings, 0u);
    EXPECT_EQ(values("<bank><preset name='k7rw:x'><section path='modThumpcraft'><section path='gate-params'>"
                     "<param path='knee'>9</param></section></section></preset></bank>",
                     "k7rw", "modThumpcraft.gate-params.knee")
                  .cells(0)[0],
              9.0);
    (void)built("<preset name='k7rw:x'><param path='modThumpcraft.xo-sel'>0</param></preset>");
    EXPECT_EQ(m_warnings, 1u) << "what loading passes over is told";
}

TEST_F(QrbPreset, WrongTextsAreToldWithTheirPlace)
{
    const auto inPreset = [](const std::string& content) {
        return "<preset registry='k7rw' name='x'>\n" + content + "</preset>";
    };
    const auto param = [&](const std::string& path, const std::string& content) {
        return inPreset("<param path='modThumpcraft." + path + "'>" + content + "</param>");
    };
    const std::vector<std::pair<std::string, std::string>> rows{
        {"<bank", "t:1:"},
        {"<banks/>", "t:1:1: the text is a <preset>"},
        {param("outgain", "loud"), "t:2:1: 'modThumpcraft.outgain': 'loud' is no value from -12.0 dB to 12.0 dB"},
        {param("outgain", "12.1"), "out of the range"},
        {param("outgain", "1,,2"), "nothing between"},
        {param("outgain", "-6 =0.25"), "are not the same"},
        {param("outgain", "=0.25x"), "is no number"},
        {param("outgain", "=nan"), "is no number"},
        {param("outgian", "0"), "is 'modThumpcraft.outgain' meant?"},
        {param("outgain", "0</param><param path='modThumpcraft.outgain'>0"), "has a value already"},
        {param("outgain", "<group index='32'>0</group>"), "index is 0 to 31"},
        {param("outgain", "<group>0</group>1"), "has no place in <param>"},
        {param("preset-name", "\"open"), "no parameter"},
        {inPreset("<param path='preset-name'>\"open</param>"), "not closed"},
        {inPreset("<param path='preset-name'>\"\\q\"</param>"), "unknown escape"},
        {inPreset("<param path='preset-name'>\"a\" b</param>"), "comma is missing"},
        {inPreset("<param>1</param>"), "needs a path"},
        {inPreset("<raw path='x'>0</raw>"), "hexadecimal"},
        {inPreset("<param path='x' type='number' definition='y' size='0'>=1</param>"), "'size' is 1 to"},
        {inPreset("<param path='x' type='number' definition='y'>1</param>"), "only exact numbers"},
        {"<preset registry='k7rw'/>", "needs a name"},
        {"<preset name='x' color='red'/>", "no attribute 'color'"},
        {"<preset name='\\'/>", "unknown escape"},
        {"<list count='2'/>", "0 or less"},
        {"<list><preset name='a'/><bank/></list>", "either banks or presets"},
        {"<preset name='" + std::string(61441, 'n') + "'/>", "longer than 61440"},
    };
    for (const auto& [text, wanted] : rows)
        EXPECT_NE(errorsOf(text).find(wanted), std::string::npos) << text.substr(0, 200) << "\n" << errorsOf(text);
    std::string deep = "<preset name='k7rw:x'>";
    for (int i = 0; i < 100000; ++i)
        deep += "<section path='a'>";
    EXPECT_NE(errorsOf(deep), "");
}

TEST_F(QrbPreset, DamagedFilesAreRefused)
{
    product::CPresetFile file = CRandomFile(m_params, 4).make();
    file.kind = product::EFileKind::list;
    file.banks.resize(2);
    file.banks[0].presets.push_back({"k7rw:x", {{"key", "bytes"}}});
    const std::string bytes = bytesOf(file);
    std::string error;
    product::CPresetFile out;
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(product::readPresetFile(bytes.substr(0, length), out, error)) << length;
    const auto content = [](const std::vector<std::int32_t>& numbers) {
        std::string plain;
        for (const std::int32_t number : numbers)
            product::appendInt(plain, number);
        qrb::CWriteSeqBuffer packed;
        EXPECT_FALSE(
            packed.writeCompressedData({reinterpret_cast<const std::uint8_t*>(plain.data()), plain.size()}, kListId));
        qrb::CByteArray chunk;
        packed.getContiguous(chunk);
        return std::string(reinterpret_cast<const char*>(chunk.data()), chunk.size());
    };
    for (const auto& [numbers, wanted] : std::vector<std::pair<std::vector<std::int32_t>, const char*>>{
             {{1, 0, -1}, "bank of -1 presets"},
             {{1, -1, 0}, "too long"},
             {{1, 61441}, "too long"},
             {{0x7FFFFFFF, 0, 0}, "ends within"},
             {{1, 0, 1, 0, 1, 0, 0x7FFFFFFF}, "ends within a parameter"},
             {{0, 7}, "4 bytes follow"}}) {
        error.clear();
        EXPECT_FALSE(product::readPresetFile(content(numbers), out, error));
        EXPECT_NE(error.find(wanted), std::string::npos) << error;
    }
    EXPECT_FALSE(product::readPresetFile("dstr" + bytes.substr(4), out, error));
}

TEST(QrbPresetTool, FilesAreWrittenWholeOrNotAtAll)
{
    const qrb::CTempFolders folder;
    const auto path = [&](const char* name) { return (folder.root() / name).string(); };
    const auto write = [&](const char* name, const std::string& text) {
        qrb::CTempFolders::write(folder.root() / name, {text.begin(), text.end()});
    };
    const auto run = [](const std::vector<std::string>& words, std::span<const qrb::CResourceRow> linked) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = runTool(words, linked);
        return std::to_string(status) + testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    };
    const std::span<const qrb::CResourceRow> linked = qrb::productResources();
    write("good.xml", "<list registry='k7rwb'><preset name='A'><param path='attack'>2</param></preset></list>");
    write("bad.xml", "<list>");
    EXPECT_EQ(run({"build", path("good.xml"), path("out")}, linked), "0");
    const std::vector<std::uint8_t> built = qrb::CTempFolders::read(path("out"));
    EXPECT_EQ(run({"check", path("good.xml")}, linked), "0");
    EXPECT_EQ(run({"build", path("bad.xml"), path("out")}, linked).substr(0, 1), "2");
    EXPECT_EQ(run({"print", path("bad.xml"), path("out")}, linked).substr(0, 1), "2");
    EXPECT_EQ(qrb::CTempFolders::read(path("out")), built);
    EXPECT_NE(run({"print", path("out")}, linked).find("<param path=\"attack\">2.00 ms</param>"), std::string::npos);
    EXPECT_NE(run({"params", "k7rwb"}, linked).find("attack  n x n  default 100 ms  (1.00 ms to 500 ms)"),
              std::string::npos);
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {}, {"build", path("good.xml")}, {"--document"}, {"params", "x"}, {"print", path("absent")}, {"-q"}})
        EXPECT_EQ(run(words, linked).substr(0, 1), "2");

    // While the product's data files are made there is only its document.
    EXPECT_EQ(run({"check", path("good.xml")}, {}).substr(0, 1), "2");
    for (const qrb::CResourceRow& row : linked)
        if (std::string_view(row.name) == product::CDocumentModule::kDocument) {
            std::uint32_t size = 0;
            std::memcpy(&size, row.data, sizeof size);
            qrb::CTempFolders::write(path("document"), {row.data + sizeof size, row.data + sizeof size + size});
        }
    EXPECT_EQ(run({"build", "--document", path("document"), "--block", "AppDataLocal_xotube-presets", path("good.xml"),
                   path("again")},
                  {}),
              "0");
    EXPECT_EQ(qrb::CTempFolders::read(path("again")), built);
}

} // namespace
