// SPDX-License-Identifier: GPL-3.0-or-later
// Eight lines in two vectors, so that the processor has something to do while the one waits: what loops for several
// vector widths are written in. Included inside a namespace that holds the quads in one of its own.

constexpr std::size_t kLanes = 8;

struct Mask {
    decltype(quads::Lanes{} > quads::Lanes{}) low, high;
};

struct Lanes {
    quads::Lanes low, high;

    [[gnu::always_inline]] friend inline Lanes operator+(Lanes a, Lanes b) { return {a.low + b.low, a.high + b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator-(Lanes a, Lanes b) { return {a.low - b.low, a.high - b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator*(Lanes a, Lanes b) { return {a.low * b.low, a.high * b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator/(Lanes a, Lanes b) { return {a.low / b.low, a.high / b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator+(Lanes a, double b) { return {a.low + b, a.high + b}; }
    [[gnu::always_inline]] friend inline Lanes operator+(double a, Lanes b) { return {a + b.low, a + b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator-(double a, Lanes b) { return {a - b.low, a - b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator*(Lanes a, double b) { return {a.low * b, a.high * b}; }
    [[gnu::always_inline]] friend inline Lanes operator*(double a, Lanes b) { return {a * b.low, a * b.high}; }
    [[gnu::always_inline]] friend inline Lanes operator/(double a, Lanes b) { return {a / b.low, a / b.high}; }
    [[gnu::always_inline]] friend inline Mask operator>=(Lanes a, Lanes b) { return {a.low >= b.low, a.high >= b.high}; }
    [[gnu::always_inline]] friend inline Mask operator>(Lanes a, Lanes b) { return {a.low > b.low, a.high > b.high}; }
};

[[gnu::always_inline]] inline Lanes all(double x)
{
    return {quads::all(x), quads::all(x)};
}

template <typename F>
[[gnu::always_inline]] inline Lanes lanesOf(F at)
{
    return {quads::lanesOf(at), quads::lanesOf([=](std::size_t lane) { return at(lane + quads::kLanes); })};
}

template <typename F>
[[gnu::always_inline]] inline void eachLane(Lanes lanes, F put)
{
    quads::eachLane(lanes.low, put);
    quads::eachLane(lanes.high, [=](std::size_t lane, double x) { put(lane + quads::kLanes, x); });
}

[[gnu::always_inline]] inline Lanes select(Mask mask, Lanes yes, Lanes no)
{
    return {quads::select(mask.low, yes.low, no.low), quads::select(mask.high, yes.high, no.high)};
}

[[gnu::always_inline]] inline bool isAny(Mask mask)
{
    return quads::isAny(mask.low | mask.high);
}

[[gnu::always_inline]] inline Lanes largerOf(Lanes a, Lanes b)
{
    return {quads::largerOf(a.low, b.low), quads::largerOf(a.high, b.high)};
}

[[gnu::always_inline]] inline Lanes smallerOf(Lanes a, Lanes b)
{
    return {quads::smallerOf(a.low, b.low), quads::smallerOf(a.high, b.high)};
}

[[gnu::always_inline]] inline Lanes magnitude(Lanes x)
{
    return {quads::magnitude(x.low), quads::magnitude(x.high)};
}

[[gnu::always_inline]] inline Lanes withSignOf(Lanes x, Lanes sign)
{
    return {quads::withSignOf(x.low, sign.low), quads::withSignOf(x.high, sign.high)};
}

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return {quads::rootOf(x.low), quads::rootOf(x.high)};
}
