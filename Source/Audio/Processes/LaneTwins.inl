// SPDX-License-Identifier: GPL-3.0-or-later
// Lines in two vectors, so that the processor has something to do while the one waits: what loops for several vector
// widths are written in. Included inside a namespace that knows the lanes of the two as `first` and `second`.

constexpr std::size_t kLanes = first::kLanes + second::kLanes;

struct Mask {
    decltype(first::Lanes{} > first::Lanes{}) low;
    decltype(second::Lanes{} > second::Lanes{}) high;
};

struct Lanes {
    first::Lanes low;
    second::Lanes high;

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
    return {first::all(x), second::all(x)};
}

template <typename F>
[[gnu::always_inline]] inline Lanes lanesOf(F at)
{
    return {first::lanesOf(at), second::lanesOf([=](std::size_t lane) { return at(lane + first::kLanes); })};
}

template <typename F>
[[gnu::always_inline]] inline void eachLane(Lanes lanes, F put)
{
    first::eachLane(lanes.low, put);
    second::eachLane(lanes.high, [=](std::size_t lane, double x) { put(lane + first::kLanes, x); });
}

[[gnu::always_inline]] inline Lanes select(Mask mask, Lanes yes, Lanes no)
{
    return {first::select(mask.low, yes.low, no.low), second::select(mask.high, yes.high, no.high)};
}

[[gnu::always_inline]] inline bool isAny(Mask mask)
{
    return first::isAny(mask.low) || second::isAny(mask.high);
}

[[gnu::always_inline]] inline Lanes largerOf(Lanes a, Lanes b)
{
    return {first::largerOf(a.low, b.low), second::largerOf(a.high, b.high)};
}

[[gnu::always_inline]] inline Lanes smallerOf(Lanes a, Lanes b)
{
    return {first::smallerOf(a.low, b.low), second::smallerOf(a.high, b.high)};
}

[[gnu::always_inline]] inline Lanes magnitude(Lanes x)
{
    return {first::magnitude(x.low), second::magnitude(x.high)};
}

[[gnu::always_inline]] inline Lanes withSignOf(Lanes x, Lanes sign)
{
    return {first::withSignOf(x.low, sign.low), second::withSignOf(x.high, sign.high)};
}

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return {first::rootOf(x.low), second::rootOf(x.high)};
}
