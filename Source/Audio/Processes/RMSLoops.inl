// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of the level detector for one vector width. Included inside a namespace that has the lanes; all widths give
// the same bits.

template <bool kIsTwoPole>
void detect(const CRMSLine* lines, std::size_t count)
{
    constexpr double kFloor = 1e-15; // above zero, and far below anything heard
    const Lanes c = lanesOf([=](std::size_t lane) { return lines[lane].coefficient; });
    Lanes s1 = lanesOf([=](std::size_t lane) { return lines[lane].state->s1; });
    Lanes s2 = lanesOf([=](std::size_t lane) { return lines[lane].state->s2; });
    for (std::size_t i = 0; i < count; ++i) {
        const Lanes x = lanesOf([=](std::size_t lane) { return lines[lane].in[i]; });
        s1 = s1 + (x * x - s1) * c;
        if constexpr (kIsTwoPole)
            s2 = s2 + (s1 - s2) * c;
        const Lanes y = rootOf(kIsTwoPole ? s2 : s1) + kFloor;
        eachLane(y, [=](std::size_t lane, double sample) { lines[lane].out[i] = sample; });
    }
    eachLane(s1, [=](std::size_t lane, double s) { lines[lane].state->s1 = s; });
    eachLane(s2, [=](std::size_t lane, double s) { lines[lane].state->s2 = s; });
}

constexpr FRMSKernel kKernels[] = {detect<false>, detect<true>};
