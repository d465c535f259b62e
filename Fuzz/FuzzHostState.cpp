// SPDX-License-Identifier: GPL-3.0-or-later
// The state that a host keeps. First byte: whether the rest is the chunk or what is packed in it.
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReaderStatic.h"
#include "Fuzz/CFuzzProduct.h"

using namespace fuzz;

namespace {

qrb::CErrorPtr load(CFuzzProduct& product, CBytes chunk)
{
    qrb::CMemoryReaderStatic in(chunk);
    return product.wrapper().loadState(in);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CFuzzProduct& product = CFuzzProduct::instance();
    CFuzzInput input(data, size);
    const bool isPayload = (input.byte() & 1) != 0;
    const CBytes bytes = input.rest();
    const std::vector<std::uint8_t> chunk =
        isPayload ? packed(bytes, qrb::kPresetChunk) : std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    const std::string before = product.state();
    if (load(product, chunk)) {
        requireSame(product.state(), before, "a state that cannot be loaded changes nothing");
        return 0;
    }
    product.play();
    const std::vector<std::uint8_t> saved = product.saved();
    requireSuccess(load(product, saved), "a saved state can be loaded");
    require(product.saved() == saved, "a state comes back as it was");
    product.reset();
    return 0;
}
