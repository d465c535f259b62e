// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"
#include "Tests/Support/CRenderFixture.h"

#include <fstream>

namespace {

class TestRenderPresets : public CRenderFixture {
protected:
    TestRenderPresets() { writeAudio("in.wav", 44100.0, makeNoise(3, 2000)); }

    /// Renders with these words in front; gives what stands for the samples of the output.
    std::size_t rendered(std::vector<std::string> words)
    {
        words.insert(words.end(), {path("in.wav"), path("out.wav")});
        EXPECT_EQ(run(words), "");
        return std::hash<std::string>()(samples("out.wav"));
    }

    product::CPreset saved(const std::string& file, std::vector<std::string> words)
    {
        words.insert(words.end(), {"--save-preset", path(file), path("in.wav"), path("out.wav")});
        EXPECT_EQ(run(words), "");
        product::CPresetFile read;
        std::string error;
        EXPECT_TRUE(product::readPresetFile(content(file), read, error)) << error;
        return read.banks.at(0).presets.at(0);
    }

    void write(const std::string& name, product::EFileKind kind, std::vector<product::CPreset> presets)
    {
        product::CPresetFile file;
        file.kind = kind;
        file.banks.push_back({"", std::move(presets)});
        std::string bytes;
        std::string error;
        EXPECT_TRUE(product::writePresetFile(file, bytes, error)) << error;
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
};

/// The item alone, as a panel's or a sparse preset has it.
product::CPreset only(const product::CPreset& preset, const std::string& name, const std::string& prefix,
                      const std::string& key)
{
    product::CPreset picked{name, {}};
    for (const product::CItem& item : preset.items)
        if (item.key == prefix + key)
            picked.items.push_back({key, item.bytes});
    EXPECT_EQ(picked.items.size(), 1u);
    return picked;
}

TEST_F(TestRenderPresets, WhatIsSavedSoundsTheSameAgain)
{
    const std::vector<std::string> words{"--set", "modThumpcraft.outgain=-7",        "--set", "modThumpcraft.xo-type=2",
                                         "--set", "modThumpcraft.comp-enable:0:1=1", "--set", "preset-name=Mine"};
    const product::CPreset preset = saved("one.cpf", words);
    EXPECT_EQ(preset.name, "k7rw:Mine");
    const std::size_t wanted = rendered(words);
    EXPECT_NE(rendered({}), wanted);
    EXPECT_EQ(rendered({"--preset-file", path("one.cpf"), "--save-preset", path("two.cpf")}), wanted);
    EXPECT_TRUE(content("two.cpf") == content("one.cpf"));
}

TEST_F(TestRenderPresets, PresetsComeFromTheBankThatIsNamed)
{
    const product::CPreset soft = saved("a", {"--set", "modThumpcraft.outgain=-9", "--set", "preset-name=Soft"});
    const product::CPreset loud = saved("b", {"--set", "modThumpcraft.outgain=9", "--set", "preset-name=Loud"});
    const std::size_t softSound = rendered({"--preset-file", path("a")});
    const std::size_t loudSound = rendered({"--preset-file", path("b")});
    for (const product::EFileKind kind : {product::EFileKind::bank, product::EFileKind::list}) {
        write("bank", kind, {soft, loud});
        EXPECT_EQ(rendered({"--bank", path("bank")}), softSound);
        EXPECT_EQ(rendered({"--bank", path("bank"), "--preset", "loud"}), loudSound);
        EXPECT_EQ(rendered({"--bank", path("bank"), "--preset", "k7rw:Loud"}), loudSound);
        EXPECT_EQ(rendered({"--bank", path("bank"), "--preset", "Soft", "--set", "modThumpcraft.outgain=9"}),
                  rendered({"--preset-file", path("a"), "--set", "modThumpcraft.outgain=9"}));
    }
    EXPECT_EQ(run({"--presets", "--bank", path("bank")}), "");
    EXPECT_EQ(m_printed, "  Soft\n  Loud\n");
    EXPECT_EQ(run({"--presets", "--json"}), "");
    EXPECT_NE(m_printed.find("{\"name\": \"Default\", \"registry\": \"k7rw\", \"current\": true}"), std::string::npos);
    EXPECT_EQ(rendered({"--preset", "default"}), rendered({}));
}

TEST_F(TestRenderPresets, RoutingFollowsFilesThatTellIt)
{
    const product::CPreset crossed =
        saved("x", {"--set", "io-params.in-routing:0:0=2", "--set", "io-params.in-routing:0:1=1"});
    write("panel", product::EFileKind::preset, {only(crossed, "QBIO:Crossed", "io-params.", "in-routing")});
    const std::size_t wanted =
        rendered({"--set", "io-params.in-routing:0:0=2", "--set", "io-params.in-routing:0:1=1", "--set",
                  "io-params.out-routing:0:2=0"}); // what the panel does not hold is reset
    EXPECT_EQ(rendered({"--preset-file", path("panel")}), wanted);
    const product::CPreset plain = only(crossed, "k7rw:Plain", "", "modThumpcraft.outgain");
    write("plain", product::EFileKind::preset, {plain});
    EXPECT_EQ(rendered({"--preset-file", path("plain")}), rendered({})) << "all three channels go through";
}

TEST_F(TestRenderPresets, WhatCannotBeDoneIsOneLineAndLeavesNoFile)
{
    const product::CPreset preset = saved("good", {});
    write("many", product::EFileKind::bank, {preset, preset});
    write("none", product::EFileKind::bank, {});
    write("strange", product::EFileKind::preset, {{"abcd:x", {}}});
    product::CPreset broken = only(preset, "k7rw:x", "", "modThumpcraft.outgain");
    broken.items[0].bytes.resize(30);
    write("broken", product::EFileKind::preset, {broken});
    std::ofstream(path("text")) << "this is no preset";
    std::ofstream(path("short")) << content("good").substr(0, 40);
    const std::string out = path("saved");
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows{
        {{"--preset", "nothing"}, "there is no preset 'nothing' (--presets"},
        {{"--preset"}, "needs a value"},
        {{"--bank", path("many"), "--preset", "nothing"}, "there is no preset 'nothing' in"},
        {{"--bank", path("many"), "--bank", path("many")}, "given twice"},
        {{"--bank", path("none")}, "holds no preset"},
        {{"--bank", path("absent")}, "cannot read"},
        {{"--bank", path("")}, "is a folder"},
        {{"--preset-file", path("many")}, "holds 2 presets"},
        {{"--preset-file", path("strange")}, "nothing in the product takes the preset 'abcd:x'"},
        {{"--set", "modThumpcraft.outgain=3", "--preset-file", path("broken")}, "cannot be used"},
        {{"--preset-file", path("text")}, "no file of presets"},
        {{"--preset-file", path("short")}, "damaged"},
        {{"--set", "modThumpcraft.nothing=1"}, "no parameter"},
    };
    for (const auto& [words, wanted] : rows) {
        std::vector<std::string> all{"--save-preset", out};
        all.insert(all.end(), words.begin(), words.end());
        const std::string error = run(all);
        EXPECT_NE(error.find(wanted), std::string::npos) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(out));
    }
    EXPECT_NE(run({"--save-preset", path("nowhere/x")}).find("cannot write"), std::string::npos);
    EXPECT_NE(run({"--save-preset", "/dev/null"}).find("not a regular file"), std::string::npos);
    std::ofstream(out) << "before";
    EXPECT_NE(run({"--save-preset", out, path("in.wav"), path("nowhere/out.wav")}), "");
    EXPECT_EQ(content("saved"), "before") << "a rendering that fails saves nothing";
}

} // namespace
