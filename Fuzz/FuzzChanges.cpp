// SPDX-License-Identifier: GPL-3.0-or-later
// Changes as editors make them while the product plays. Nobody holds their numbers within the declared bounds, so that
// whatever is heard need not be finite, but all else has to hold. The input is a row of changes: two bytes for the
// parameter, then a block with the change.
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Core/CMemoryReaderStatic.h"
#include "Fuzz/CFuzzProduct.h"

using namespace fuzz;

namespace {

constexpr int kMaxChanges = 30;

void change(qrb::CAudioParam& param, CBytes bytes)
{
    qrb::CMemoryReaderStatic in(bytes);
    qrb::CAudioParamUpdateHolder holder;
    qrb::CAudioParamUpdate update;
    if (!update.load(in, holder))
        param.update(update);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CFuzzProduct& product = CFuzzProduct::instance();
    static const qrb::CArray<qrb::CAudioParam*> params = product.boundParams();
    CFuzzInput input(data, size);
    for (int i = 0; i < kMaxChanges && !input.empty(); ++i) {
        const std::size_t low = input.byte();
        const std::size_t index = low + input.byte() * std::size_t{256};
        change(*params[index % params.size()], input.block());
        product.play(EBounds::any);
    }
    product.restart();
    return 0;
}
