// SPDX-License-Identifier: GPL-3.0-or-later
// What the plug-in tells of itself: class, parameters, programs.
#include "Tests/Hosts/Juce/CHostedPlugin.h"
#include "Tests/Hosts/Juce/Checks.h"

#include <cmath>

namespace {

constexpr int kParamCount = 73;
constexpr int kProgramParam = 72;

} // namespace

bool checkScan(CBench& bench, const juce::String& bundle)
{
    CReport::title("Scan of " + bundle);
    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    const CStopwatch watch;
    format.findAllTypesForFile(found, bundle);
    CReport::note(juce::String(watch.elapsed(), 1) + " ms");
    if (!bench.report.check(found.size() == 1, "one plug-in is found"))
        return false;
    bench.plugin = *found[0];
    const juce::PluginDescription& told = bench.plugin;
    CReport::note("name " + told.name + ", vendor " + told.manufacturerName + ", version " + told.version +
                  ", category " + told.category + ", id " + juce::String::toHexString(told.uniqueId));
    CReport::note("inputs " + juce::String(told.numInputChannels) + ", outputs " +
                  juce::String(told.numOutputChannels));
    bench.report.check(told.name == "Thumpcraft" && told.manufacturerName == "Quorbel" && told.version.isNotEmpty() &&
                           told.category == "Fx|Dynamics" && !told.isInstrument,
                       "name, vendor, version and category");

    const CStopwatch creation;
    const CHostedPlugin plugin(bench.formats, told);
    CReport::note("first instance " + juce::String(creation.elapsed(), 1) + " ms");
    if (!bench.report.check(plugin.isThere(), "an instance is made"))
        return false;
    juce::PluginDescription lived;
    plugin->fillInPluginDescription(lived);
    bench.report.check(lived.name == told.name && lived.uniqueId == told.uniqueId && lived.version == told.version &&
                           lived.category == told.category && lived.manufacturerName == told.manufacturerName,
                       "the instance tells the same as the scan");
    bench.report.check(!plugin->hasEditor() || plugin->createEditorIfNeeded() != nullptr,
                       "an editor if one is told of");
    return true;
}

void checkParameters(CBench& bench)
{
    CReport::title("Parameters");
    const CHostedPlugin plugin(bench.formats, bench.plugin);
    const auto& params = plugin->getParameters();
    bench.report.check(params.size() == kParamCount, juce::String(params.size()) + " parameters");
    int wrong = 0;
    for (int i = 0; i < params.size(); ++i) {
        juce::AudioProcessorParameter& param = *params[i];
        const float value = param.getDefaultValue();
        const juce::String text = param.getText(value, 127);
        const juce::String id = dynamic_cast<juce::HostedAudioProcessorParameter&>(param).getParameterID();
        CReport::note(id.paddedLeft(' ', 2) + "  " + param.getName(127).paddedRight(' ', 10) + text + " " +
                      param.getLabel());
        const bool isRead = std::abs(param.getValueForText(text) - value) < 0.01F;
        const bool isNumberList = i == 3; // there a number is taken for an index
        if (id != juce::String(i) || text.isEmpty() || !(isRead || isNumberList) ||
            std::abs(param.getValue() - value) > 1e-6F)
            ++wrong;
    }
    bench.report.check(wrong == 0, "ids by place, defaults in force, text both ways");
    bench.report.check(plugin->getBypassParameter() == params[0], "the bypass is known");

    for (int i = 0; i < kProgramParam; ++i)
        params[i]->setValue(1.0F);
    runMessages();
    int kept = 0;
    for (int i = 0; i < kProgramParam; ++i)
        kept += params[i]->getValue() >= 1.0F ? 1 : 0;
    bench.report.check(kept == kProgramParam, "values set without audio stay");
}

void checkPrograms(CBench& bench)
{
    CReport::title("Programs");
    CHostedPlugin plugin(bench.formats, bench.plugin);
    const int count = plugin->getNumPrograms();
    juce::StringArray names;
    for (int i = 0; i < count; ++i)
        names.add(plugin->getProgramName(i));
    CReport::note(names.joinIntoString(", "));
    bench.report.check(count > 0 && !names.contains("") && !names.joinIntoString("").containsChar(':'),
                       juce::String(count) + " programs with names");

    CRun run;
    plugin.prepare(run);
    const CSignal in = noise(2, 8192);
    bool isSound = true;
    bool isSelected = true;
    for (int i = 0; i < count; ++i) {
        plugin->setCurrentProgram(i);
        isSound = isSound && isFinite(plugin.play(in, run));
        runMessages();
        isSound = isSound && peakOf(plugin.play(in, run)) < 16.0;
        isSelected = isSelected && plugin->getCurrentProgram() == i;
    }
    bench.report.check(isSound, "all of them under running audio: finite and bounded");
    bench.report.check(isSelected, "the one that was chosen is current");
    const juce::StringArray last = plugin.texts();
    CHostedPlugin other(bench.formats, bench.plugin);
    other.restore(plugin.save());
    bench.report.check(other.texts() == last, "the last one's values come back with the state");
}
