// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/VST/VstTestSupport.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <latch>
#include <malloc.h>
#include <map>
#include <optional>
#include <thread>
#include <unistd.h>

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

namespace files = std::filesystem;

TEST(TestVst3Module, GoesWithAllItTookEachTimeItIsClosed)
{
    std::size_t early = 0;
    for (int round = 0; round < 100; ++round) {
        std::optional<CModuleFile> module(std::in_place);
        ASSERT_NE(module->factory(), nullptr);
        if (round % 20 == 0) {
            // A thread that has been inside lives on when the module is gone.
            std::latch isUsed(1);
            std::latch isClosed(1);
            std::optional<CVstHost> host(std::in_place, *module->factory());
            host->start();
            std::thread audio([&] {
                host->play(makeNoise(2, 256), 2);
                isUsed.count_down();
                isClosed.wait();
            });
            isUsed.wait();
            host->stop();
            host.reset();
            module.reset();
            isClosed.count_down();
            audio.join();
        }
        module.reset();
        ASSERT_FALSE(CModuleFile::isLoaded());
        if (round == 20)
            early = mallinfo2().uordblks;
    }
    EXPECT_LT(mallinfo2().uordblks, early + 4096);
}

TEST(TestVst3Module, StaysWithItsInstancesWhenTheHostHasLeft)
{
    CModuleFile module;
    const FUnknownPtr<IPluginFactory2> factory(module.factory());
    PClassInfo2 info;
    ASSERT_EQ(factory->getClassInfo2(0, &info), kResultOk);
    std::optional<CVstHost> host(std::in_place, *module.factory());
    host->start();
    EXPECT_TRUE(module.enter());
    EXPECT_TRUE(module.leave());
    EXPECT_TRUE(module.leave());
    EXPECT_FALSE(module.leave()); // more often than it came
    EXPECT_GT(energyOf(host->play(makeNoise(2, 4096), 2)), 0.0);
    EXPECT_FALSE(host->save().empty());
    host->stop();
    host.reset();
    void* late = nullptr;
    EXPECT_NE(module.factory()->createInstance(info.cid, IComponent::iid, &late), kResultOk);
    EXPECT_EQ(late, nullptr);
    EXPECT_TRUE(module.enter());
    CVstHost again(*module.factory());
}

TEST(TestVst3Module, CopiesOfItDoNotMeet)
{
    const files::path path = files::temp_directory_path() / ("thumpcraft-copy-" + std::to_string(::getpid()) + ".so");
    files::copy_file(THUMPCRAFT_MODULE, path, files::copy_options::overwrite_existing);
    {
        const CModuleFile second(path);
        CVstHost other(*second.factory());
        other.start();
        {
            const CModuleFile first;
            EXPECT_NE(first.factory(), second.factory());
            CVstHost host(*first.factory());
            host.start();
            EXPECT_EQ(host.play(makeNoise(2, 4096), 2), other.play(makeNoise(2, 4096), 2));
            host.stop();
        }
        EXPECT_GT(energyOf(other.play(makeNoise(2, 4096), 2)), 0.0);
        other.stop();
    }
    files::remove(path);
}

/// All "key": "text" of a JSON file without escapes; of lists the texts with bars between.
std::multimap<std::string, std::string> jsonTexts(const files::path& path)
{
    std::ifstream file(path);
    std::vector<std::string> parts; // texts, and what stands between them
    for (std::string part; std::getline(file, part, '"');)
        parts.push_back(part);
    std::multimap<std::string, std::string> out;
    for (std::size_t i = 1; i + 2 < parts.size(); i += 2) {
        if (parts[i + 1] != ": " && parts[i + 1] != ": [")
            continue;
        const auto entry = out.emplace(parts[i], parts[i + 2]);
        for (std::size_t next = i + 4; parts[i + 1] == ": [" && next < parts.size() && parts[next - 1] == ", ";
             next += 2)
            entry->second += "|" + parts[next];
    }
    return out;
}

TEST(TestVst3Module, TellsItsClassAsItsDescriptionDoes)
{
    const CModuleFile module;
    const FUnknownPtr<IPluginFactory2> factory(module.factory());
    PFactoryInfo maker;
    PClassInfo2 info;
    ASSERT_EQ(factory->getFactoryInfo(&maker), kResultOk);
    ASSERT_EQ(factory->countClasses(), 1);
    ASSERT_EQ(factory->getClassInfo2(0, &info), kResultOk);
    const unsigned char id[] = {0x10, 0x2A, 0x3E, 0x7F, 0x5B, 0x4C, 0x8E, 0x4D,
                                0xA1, 0xF7, 0x2B, 0x9C, 0x0D, 0x6E, 0x4F, 0x31};
    EXPECT_EQ(std::memcmp(info.cid, id, sizeof id), 0);
    void* other = nullptr;
    const TUID unknown{};
    EXPECT_NE(module.factory()->createInstance(unknown, IComponent::iid, &other), kResultOk);

    char8 idText[33];
    FUID::fromTUID(info.cid).toString(idText);
    const std::multimap<std::string, std::string> expected = {
        {"Name", info.name},         {"Version", info.version},       {"Vendor", maker.vendor},
        {"URL", maker.url},          {"E-Mail", maker.email},         {"CID", idText},
        {"Category", info.category}, {"Name", "Thumpcraft"},          {"Vendor", info.vendor},
        {"Version", info.version},   {"SDKVersion", info.sdkVersion}, {"Sub Categories", info.subCategories}};
    EXPECT_EQ(jsonTexts(files::path(THUMPCRAFT_MODULE).parent_path() / "../Resources/moduleinfo.json"), expected);
    EXPECT_STREQ(info.sdkVersion, "VST 3.5.1");
    EXPECT_STREQ(info.subCategories, "Fx|Dynamics");
    EXPECT_EQ(maker.flags, PFactoryInfo::kUnicode);
}

} // namespace
