// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioWrapper.h"
#include "Platform/Folders.h"
#include "Tests/Support/CTestModule.h"

#include <string>
#include <vector>

namespace qrb {

/// Node that hands its lines on, scaled by its parameter, and writes down how it was called.
class CRecorder : public CAudioProcessBase {
public:
    struct CCall {
        int length;
        int lineCount;
        double level;
        bool operator==(const CCall&) const = default;
    };

    CErrorPtr init() override;
    void update() override;

    /// Calls since the test cleared it; of the node that was made last.
    static std::vector<CCall>& calls();

protected:
    void processLines() override;

private:
    CAudioParamSlot m_level;
};

/// Instance whose event index 0 is the recorder's level.
class CTestWrapper : public CAudioWrapper {
public:
    bool onExtParamEvent(const CExternalEvent& event) override;
    void onLatencyChange() override;

    double param(const char* path);

    int refuseCount = 0; ///< so many events are refused first
    int latencyChangeCount = 0;
};

/// A module with a small product: recorder and constant latency between input and output.
class CWrapperWorld {
public:
    explicit CWrapperWorld(const std::string& projectAttrs = {});

private:
    /// No settings of whoever runs the test.
    class CNoFolders : public platform::IFolders {
    public:
        std::string userDataFolder() override { return {}; }
        std::string machineDataFolder() override { return {}; }
        std::string modulePath() override { return {}; }
    };

    CNoFolders m_folders;
    CTestModule m_module;
};

/// Attributes of a project that is accepted.
[[nodiscard]] std::string goodProject();

} // namespace qrb
