// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of the level detector for one vector width. Included inside a namespace that defines kLanes, Lanes and
// rootOf; all widths give the same bits.

template <bool kIsTwoPole>
void detect(const CRMSLine* lines, std::size_t count)
{
    constexpr double kFloor = 1e-15; // above zero, and far below anything heard
    Lanes c;
    Lanes s1;
    Lanes s2;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        c[lane] = lines[lane].coefficient;
        s1[lane] = lines[lane].state->s1;
        s2[lane] = lines[lane].state->s2;
    }
    for (std::size_t i = 0; i < count; ++i) {
        Lanes x;
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            x[lane] = lines[lane].in[i];
        s1 += (x * x - s1) * c;
        if constexpr (kIsTwoPole)
            s2 += (s1 - s2) * c;
        const Lanes y = rootOf(kIsTwoPole ? s2 : s1) + kFloor;
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lines[lane].out[i] = y[lane];
    }
    for (std::size_t lane = kLanes; lane > 0; --lane)
        *lines[lane - 1].state = {s1[lane - 1], s2[lane - 1]};
}

constexpr FRMSKernel kKernels[] = {detect<false>, detect<true>};
