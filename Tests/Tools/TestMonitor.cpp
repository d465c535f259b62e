// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CMonitorOptions.h"
#include "Tools/Monitor/CMonitorRun.h"
#include "Tools/Monitor/Client/CScreen.h"
#include "Tools/Product/CDocumentModule.h"
#include "Tools/Product/CPresetFile.h"
#include "Tools/Render/CSoundFile.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <monitorResources.h>
#include <numbers>
#include <poll.h>
#include <productResources.h>
#include <pty.h>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utility>
#include <utmp.h>

namespace {

namespace fs = std::filesystem;

constexpr double kRate = 48000.0;
constexpr int kPatience = 60000; // ms without a sign of life

double dB(double factor)
{
    return 20.0 * std::log10(factor);
}

/// Characters of a line for a terminal, without those that only command it.
std::size_t widthOf(const std::string& line)
{
    std::size_t width = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\x1b')
            i = line.find_first_of("ABCDHJKmhl", i);
        else if ((static_cast<unsigned char>(line[i]) & 0xC0) != 0x80)
            ++width;
    }
    return width;
}

/// Watches files in a folder of their own: in.wav is a tone of 1 kHz with an amplitude of 0.5 on the left and 0.125 on
/// the right. The product has two programs.
class TestMonitor : public testing::Test {
protected:
    void SetUp() override
    {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = fs::temp_directory_path() / (std::string("thumpcraft-") + info->name() + std::to_string(getpid()));
        fs::create_directories(m_folder);
        std::vector<double> samples;
        for (int i = 0; i < 2 * static_cast<int>(kRate); ++i) {
            const double sample = std::sin(2.0 * std::numbers::pi * 1000.0 * i / kRate);
            samples.insert(samples.end(), {0.5 * sample, 0.125 * sample});
        }
        render::CSoundFileWriter file;
        std::string error;
        EXPECT_TRUE(file.open(path("in.wav"), 2, kRate, render::EFileFormat::float64, error)) << error;
        EXPECT_TRUE(file.write(samples, error) && file.finish(error)) << error;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    /// Runs the tool over in.wav in one band; gives the error line, empty on success.
    std::string watch(std::vector<std::string> words)
    {
        std::string error;
        words.insert(words.begin(), {"--set", "modThumpcraft.xo-count=0"});
        const std::optional<monitor::CMonitorOptions> options = monitor::parseOptions(words, error);
        if (!options)
            return error;
        product::CPresetFile bank{product::EFileKind::bank, {{"", {{"k7rw:First", {}}, {"k7rw:Second", {}}}}}};
        std::string bytes;
        EXPECT_TRUE(product::writePresetFile(bank, bytes, error)) << error;
        product::CDataFiles files{{qrb::productResources(), qrb::monitorResources()}, {}};
        files.read["FactoryROM.cbf"].assign(bytes.begin(), bytes.end());
        const product::CDocumentModule module(std::move(files), error);
        EXPECT_TRUE(module.isEntered()) << error;
        monitor::CMonitorRun run(*options);
        testing::internal::CaptureStdout();
        const bool isDone = run.run(error);
        m_printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(isDone, error.empty());
        return error;
    }

    /// The lines of a picture, from 1 on, as far as they begin with a word.
    std::vector<std::string> lines(int frame, const std::string& word) const
    {
        std::istringstream text(m_printed);
        std::vector<std::string> found;
        bool isWanted = false;
        for (std::string line; std::getline(text, line);) {
            if (line.starts_with("frame "))
                isWanted = std::stoi(line.substr(6)) == frame;
            if (isWanted && line.starts_with(word + " "))
                found.push_back(line.substr(word.size() + 1));
        }
        return found;
    }
    std::string line(int frame, const std::string& word) const
    {
        const std::vector<std::string> found = lines(frame, word);
        return found.size() == 1 ? found[0] : std::to_string(found.size()) + " lines";
    }
    double level(int frame, const std::string& meter) const { return std::strtod(line(frame, meter).c_str(), nullptr); }
    double peak(int frame, const std::string& meter) const
    {
        const std::string text = line(frame, meter);
        const std::size_t place = text.find("peak ");
        return place == std::string::npos ? 1e9 : std::strtod(text.c_str() + place + 5, nullptr);
    }

    fs::path m_folder;
    std::string m_printed;
};

TEST_F(TestMonitor, LevelsAndSpectrumAreThoseOfWhatIsPlayed)
{
    ASSERT_EQ(watch({path("in.wav"), "--frames", "50"}), "");
    EXPECT_EQ(line(40, "frame"), "40 2.000 s");
    EXPECT_EQ(line(40, "setup"), "48000 Hz 2 in 2 out 0 key");
    EXPECT_EQ(line(40, "preset"), "First");
    EXPECT_EQ(lines(40, "comp 1/1").size(), 0u) << "it is off";
    EXPECT_NEAR(level(39, "out 1"), dB(0.5 / std::numbers::sqrt2), 0.1);
    EXPECT_NEAR(peak(39, "out 1"), dB(0.5), 0.01);
    EXPECT_NEAR(level(39, "out 2"), dB(0.125 / std::numbers::sqrt2), 0.1);
    EXPECT_NEAR(peak(39, "band 2/1"), dB(0.125), 0.01);
    EXPECT_NEAR(level(39, "octave 1000"), dB(0.5 / std::numbers::sqrt2), 0.1);
    EXPECT_LT(level(39, "octave 125"), -60.0);
    EXPECT_LT(level(39, "octave 4000"), -60.0);
    EXPECT_LT(level(50, "out 1"), level(42, "out 1") - 3.0) << "the file has ended";
    EXPECT_NEAR(peak(50, "out 1"), dB(0.5), 0.01) << "held";

    const std::string first = m_printed;
    ASSERT_EQ(watch({path("in.wav"), "--frames", "50"}), "");
    EXPECT_EQ(m_printed, first) << "time is the audio's";
}

TEST_F(TestMonitor, GainsAreWhatTheOutputLosesAgainstTheInput)
{
    ASSERT_EQ(watch({path("in.wav"), "--frames", "38", "--set", "modThumpcraft.gate-enable=On", "--set",
                     "modThumpcraft.gate-threshold=0", "--set", "modThumpcraft.outgain=-6"}),
              "");
    for (const char* const channel : {"1", "2"}) {
        const double in = dB((*channel == '1' ? 0.5 : 0.125) / std::numbers::sqrt2);
        const double gate = level(38, std::string("gate ") + channel);
        EXPECT_LT(gate, -3.0);
        EXPECT_NEAR(level(38, std::string("out ") + channel), in + gate - 6.0, 0.1);
        const std::string ratio = std::string("ratio ") + channel;
        EXPECT_LT(level(38, ratio), level(20, ratio) - 0.1) << "a long mean goes there";
    }
    // The compressor's meter follows what its gain does until that is what it is used to.
    ASSERT_EQ(watch({path("in.wav"), "--frames", "30", "--set", "modThumpcraft.comp-enable=On", "--set",
                     "modThumpcraft.comp-threshold=-60"}),
              "");
    EXPECT_LT(level(5, "comp 1/1"), -3.0);
    EXPECT_GT(level(30, "comp 1/1"), level(5, "comp 1/1"));
}

TEST_F(TestMonitor, KeysChangeSettingsAndMoveInTheHistory)
{
    //                    1234567890123456789012
    const char* const keys = "++-.j+u.u.yy.n.p.x-.xq";
    ASSERT_EQ(watch({path("in.wav"), "--frames", "40", "--keys", keys}), "");
    const auto expect = [&](int frame, const char* gain, const char* mix, const std::string& now, char side) {
        EXPECT_EQ(lines(frame, frame < 5 ? "selected Output gain =" : "control Output gain =").at(0), gain) << frame;
        EXPECT_EQ(lines(frame, frame < 5 ? "control Dry mix =" : "selected Dry mix =").at(0), mix) << frame;
        EXPECT_EQ(line(frame, "now"), now) << frame;
        EXPECT_EQ(line(frame, "side"), std::string(1, side)) << frame;
    };
    expect(2, "1.0 dB", "0.0 %", "Output gain", 'A');
    EXPECT_EQ(lines(2, "undo").size(), 1u) << "moves in a row are one gesture";
    expect(3, "0.5 dB", "0.0 %", "Output gain", 'A');
    expect(6, "0.5 dB", "5.0 %", "Dry mix", 'A');
    expect(7, "0.5 dB", "0.0 %", "Output gain", 'A');
    EXPECT_EQ(line(7, "redo"), "Dry mix");
    expect(9, "0.0 dB", "0.0 %", "Undo history start", 'A');
    expect(12, "0.5 dB", "5.0 %", "Dry mix", 'A');
    expect(14, "0.0 dB", "0.0 %", "Undo history start", 'A');
    EXPECT_EQ(line(14, "program"), "2 of 2");
    EXPECT_EQ(line(14, "preset"), "Second");
    expect(16, "0.5 dB", "5.0 %", "Dry mix", 'A');
    expect(19, "0.5 dB", "0.0 %", "Dry mix", 'B');
    expect(21, "0.5 dB", "5.0 %", "Dry mix", 'A');
    EXPECT_TRUE(lines(22, "frame").empty()) << "ended by a key";
}

TEST_F(TestMonitor, AChangeIsHeard)
{
    ASSERT_EQ(watch({path("in.wav"), "--frames", "38", "--keys", "++++....................r"}), "");
    EXPECT_NEAR(level(20, "out 1"), dB(0.5 / std::numbers::sqrt2) + 2.0, 0.1);
    EXPECT_EQ(line(38, "selected"), "Output gain = 0.0 dB");
    EXPECT_NEAR(level(38, "out 1"), dB(0.5 / std::numbers::sqrt2), 0.1);
}

TEST_F(TestMonitor, WhatCannotBeDoneIsOneLine)
{
    const std::string in = path("in.wav");
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {in, in},
                                                      {in, "--frames", "0"},
                                                      {in, "--frames", "1x"},
                                                      {in, "--frames"},
                                                      {in, "--fps", "0.5", "--frames", "1"},
                                                      {in, "--keys", "q"},
                                                      {in, "--frobnicate"},
                                                      {in, "--frames", "1", "--set", "nothing=1"},
                                                      {in, "--frames", "1", "--preset", "nobody"},
                                                      {path("missing.wav"), "--frames", "1"}};
    for (const std::vector<std::string>& words : wrong) {
        const std::string error = watch(words);
        EXPECT_FALSE(error.empty()) << testing::PrintToString(words);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST_F(TestMonitor, NamesDoNotCommandTheTerminal)
{
    ASSERT_EQ(watch({path("in.wav"), "--frames", "1", "--set",
                     "preset-name=a\x1b[2Jb\xC2\x9B"
                     "c\xC3\xA4"}),
              "");
    EXPECT_EQ(line(1, "preset"), "a?[2Jb?c\xC3\xA4");
}

TEST(TestMonitorScreen, APictureFitsTheTerminal)
{
    using EMeter = monitor::CPicture::EMeter;
    monitor::CPicture picture;
    picture.title = std::string(100, 'x');
    picture.preset = "Bl\xC3\xA4ser";
    picture.meters = {{"out", EMeter::level, {{"1", -9.0, 1.0}, {"2", -200.0, 200.0}}},
                      {"ratio", EMeter::change, {{"1", -3.0, 3.0}, {"2", 0.0, 0.0}}},
                      {"comp", EMeter::reduction, {{"1/1", -3.0, -30.0}}}};
    picture.spectrum.assign(30, -20.0);
    picture.controls.assign(13, {"Output gain", "0.0 dB", true});
    picture.history.assign(33, "\xC3\xA4\xC3\xA4\xC3\xA4");
    picture.historyPosition = 32;
    monitor::CScreen screen;
    for (const int columns : {1, 20, 31, 60, 80, 200})
        for (const int rows : {1, 24, 100}) {
            const std::string text = screen.paint(picture, columns, rows);
            int count = 0;
            std::size_t begin = 0;
            for (std::size_t end; (end = text.find("\x1b[K", begin)) != std::string::npos; begin = end + 3, ++count)
                EXPECT_LE(widthOf(text.substr(begin, end - begin)), static_cast<std::size_t>(columns)) << columns;
            EXPECT_GT(count, 0);
            EXPECT_LE(count, rows);
        }
    EXPECT_NE(screen.paint(picture, 80, 50).find("> \xC3\xA4"), std::string::npos) << "the present is in sight";
    EXPECT_EQ(screen.paint(picture, 80, 50), "") << "nothing new";
    picture.meters.clear();
    EXPECT_NE(screen.paint(picture, 80, 50).find("\x1b[J"), std::string::npos) << "fewer lines";
}

/// The tool itself on a terminal of its own. What ends it: a key, or a signal.
TEST_F(TestMonitor, TheTerminalIsAsBeforeHoweverItEnds)
{
    struct CEnd {
        const char* keys;
        int signal;
        int status; ///< 0, or the signal that it has died of
    };
    for (const CEnd& end : {CEnd{"q", 0, 0}, CEnd{"\x03", 0, 0}, CEnd{"", SIGTERM, SIGTERM}, CEnd{"", SIGHUP, SIGHUP},
                            CEnd{"", SIGABRT, SIGABRT}}) {
        winsize size{24, 80, 0, 0};
        termios before{};
        termios during{};
        termios after{};
        int terminal = -1;
        int child = -1;
        ASSERT_EQ(openpty(&terminal, &child, nullptr, nullptr, &size), 0);
        fcntl(terminal, F_SETFD, FD_CLOEXEC); // the tool does not hold its own terminal open
        tcgetattr(child, &before);
        const std::string file = path("in.wav");
        const pid_t process = fork();
        if (process == 0) {
            login_tty(child);
            execl(THUMPCRAFT_MONITOR, THUMPCRAFT_MONITOR, file.c_str(), nullptr);
            _exit(127);
        }
        std::string shown;
        // Takes what has been shown up to the text; what came with it in one piece is kept for the next question.
        const auto readUntil = [&](const std::string& text) {
            char bytes[4096];
            pollfd watched{terminal, POLLIN, 0};
            std::size_t place = std::string::npos;
            while ((place = shown.find(text)) == std::string::npos) {
                const ssize_t count = poll(&watched, 1, kPatience) > 0 ? read(terminal, bytes, sizeof bytes) : -1;
                if (count <= 0) {
                    kill(process, SIGKILL);
                    return std::exchange(shown, {});
                }
                shown.append(bytes, static_cast<std::size_t>(count));
            }
            const std::string taken = shown.substr(0, place + text.size());
            shown.erase(0, taken.size());
            return taken;
        };
        readUntil(" out 2 ");
        tcgetattr(child, &during);
        EXPECT_EQ(during.c_lflag & (ECHO | ICANON), 0u);
        kill(process, SIGTSTP);
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, WUNTRACED), process);
        EXPECT_TRUE(WIFSTOPPED(status));
        tcgetattr(child, &after);
        EXPECT_EQ(after.c_lflag, before.c_lflag) << "while it is stopped";
        kill(process, SIGCONT);
        readUntil("\x1b[?1049l");
        readUntil(" out 2 ");
        if (end.signal != 0)
            kill(process, end.signal);
        else
            EXPECT_EQ(write(terminal, end.keys, 1), 1);
        const std::string farewell = readUntil("\x1b[?1049l");
        EXPECT_EQ(waitpid(process, &status, 0), process);
        EXPECT_EQ(WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status), end.status);
        tcgetattr(child, &after);
        EXPECT_EQ(after.c_lflag, before.c_lflag);
        EXPECT_EQ(after.c_iflag, before.c_iflag);
        EXPECT_EQ(after.c_oflag, before.c_oflag);
        EXPECT_NE(farewell.find("\x1b[?25h"), std::string::npos) << "the cursor is back";
        close(terminal);
        close(child);
    }
}

} // namespace
