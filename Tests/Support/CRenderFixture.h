// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Product/BoundedFile.h"
#include "Tools/Product/CPresetFile.h"
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderJob.h"
#include "Tools/Render/CSoundFile.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

/// A folder of its own for each test, in which the render tool runs.
class CRenderFixture : public testing::Test {
protected:
    using CWords = std::vector<std::string>;

    CRenderFixture()
    {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = std::string("thumpcraft-") + info->name() + std::to_string(getpid());
        m_folder = std::filesystem::temp_directory_path() / name;
        std::filesystem::create_directories(m_folder);
    }
    ~CRenderFixture() override { std::filesystem::remove_all(m_folder); }

    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / name).string(); }

    /// Writes channels of equal length as 64-bit floats.
    void writeAudio(const std::string& name, double rate, const std::vector<std::vector<double>>& channels)
    {
        std::vector<double> interleaved;
        for (std::size_t frame = 0; frame < channels[0].size(); ++frame)
            for (const std::vector<double>& channel : channels)
                interleaved.push_back(channel[frame]);
        render::CSoundFileWriter file;
        std::string error;
        const auto count = static_cast<int>(channels.size());
        EXPECT_TRUE(file.open(path(name), count, rate, render::EFileFormat::float64, error)) << error;
        EXPECT_TRUE(file.write(interleaved, error) && file.finish(error)) << error;
    }

    [[nodiscard]] std::string content(const std::string& name) const
    {
        std::string bytes;
        EXPECT_EQ(product::readBoundedFile(path(name), product::kMaxFileBytes, bytes), "");
        return bytes;
    }

    /// The samples of an audio file and what stands behind them; in front of them stands the time.
    [[nodiscard]] std::string samples(const std::string& name) const
    {
        const std::string bytes = content(name);
        return bytes.substr(bytes.find("data"));
    }

    /// Runs the tool; gives the error line, empty on success.
    std::string run(const CWords& words)
    {
        std::string error;
        const std::optional<render::CRenderOptions> options = render::parseOptions(words, error);
        if (!options)
            return error;
        std::optional<render::CProductModule> engine;
        if (options->moduleFile.empty() && !engine.emplace(error).isEntered())
            return error;
        render::CRenderJob job(*options);
        testing::internal::CaptureStdout();
        const bool isDone = job.run(error);
        m_printed = testing::internal::GetCapturedStdout();
        return isDone ? std::string() : error;
    }

    std::filesystem::path m_folder;
    std::string m_printed; ///< by the last run
};
