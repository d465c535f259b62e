// SPDX-License-Identifier: GPL-3.0-or-later
// Payloads of presets, banks and lists. First byte: what the payload is and what happens to it; second: which registry
// gets it; third: in which group.
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReaderStatic.h"
#include "Fuzz/CFuzzProduct.h"

using namespace fuzz;

namespace {

/// What can be loaded is saved as something that loads to the same.
template <class T>
void loadAndSave(CBytes bytes)
{
    qrb::CMemoryReaderStatic in(bytes);
    T what;
    if (what.load(in))
        return;
    const std::vector<std::uint8_t> saved = savedBytes(what);
    require(saved.size() <= bytes.size() * 3, "what was read is not longer than its bytes"); // UTF-8 may grow
    qrb::CMemoryReaderStatic savedIn(saved);
    T again;
    requireSuccess(again.load(savedIn), "what was saved can be loaded");
    require(savedBytes(again) == saved, "what was saved is loaded as it was");
}

void lookAtRouting(CBytes bytes)
{
    qrb::CMemoryReaderStatic in(bytes);
    qrb::CAudioPreset preset;
    if (!preset.load(in))
        static_cast<void>(qrb::CAudioParamRegistry::isRoutingPresetUsable(preset, false, false));
}

/// Every item of the one is in the other, as it was.
void requireItems(const qrb::CAudioPreset& there, const qrb::CAudioPreset& items)
{
    for (const auto& [key, bytes] : items.items) {
        const auto same = there.items.find(key);
        require(same != there.items.end() && std::ranges::equal(same->second.span(), bytes.span()),
                key.toUtf8().c_str());
    }
}

void use(CFuzzProduct& product, bool isDefault, qrb::CAudioParamRegistry& registry, std::int32_t group, CBytes payload)
{
    const std::string before = product.state();
    qrb::CMemoryReaderStatic in(payload);
    if (isDefault ? registry.setDefaultPreset(in) : registry.activatePreset(in, nullptr, group)) {
        requireSame(product.state(), before, "a preset that cannot be loaded changes nothing");
        return;
    }
    product.play();
    const qrb::CAudioPreset taken = registry.capture(group);
    requireSuccess(registry.activatePreset(taken, nullptr, group), "a preset that was taken can be activated");
    const qrb::CAudioPreset again = registry.capture(group); // has what the group did not have before, too
    requireItems(again, taken);
    requireSuccess(registry.activatePreset(again, nullptr, group), "a preset that was taken can be activated");
    require(savedBytes(registry.capture(group)) == savedBytes(again), "a preset comes back as it was");
    product.master().masterReset();
    requireSuccess(product.master().exchangeShadowPreset(), "the shadow can be exchanged");
    product.play();
    product.reset();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CFuzzProduct& product = CFuzzProduct::instance();
    CFuzzInput input(data, size);
    const std::uint8_t kind = input.byte() % 5;
    qrb::CAudioParamRegistry& registry = product.registry(input.byte());
    const std::int32_t group = input.byte() % (qrb::kAudioParamMaxGroups + 1) - 1;
    const CBytes payload = input.rest();
    switch (kind) {
    case 0:
        loadAndSave<qrb::CAudioPreset>(payload);
        lookAtRouting(payload);
        break;
    case 1:
        loadAndSave<qrb::CAudioPresetBank>(payload);
        break;
    case 2:
        loadAndSave<qrb::CAudioPresetList>(payload);
        break;
    default:
        use(product, kind == 4, registry, group, payload);
        break;
    }
    return 0;
}
