// SPDX-License-Identifier: GPL-3.0-or-later
// Four lines in one vector: what loops for several vector widths are written in. Included inside a namespace.

constexpr std::size_t kLanes = 4;
using Lanes = double __attribute__((vector_size(32)));

[[gnu::always_inline]] inline Lanes all(double x)
{
    return _mm256_set1_pd(x);
}

/// A vector of what `at` gives for each lane.
template <typename F>
[[gnu::always_inline]] inline Lanes lanesOf(F at)
{
    return _mm256_set_pd(at(3), at(2), at(1), at(0));
}

/// Hands each lane to `put`. Written out, since a loop would send the lanes through memory.
template <typename F>
[[gnu::always_inline]] inline void eachLane(Lanes lanes, F put)
{
    put(0, lanes[0]);
    put(1, lanes[1]);
    put(2, lanes[2]);
    put(3, lanes[3]);
}

template <typename Mask>
[[gnu::always_inline]] inline Lanes select(Mask mask, Lanes yes, Lanes no)
{
    return mask ? yes : no;
}

template <typename Mask>
[[gnu::always_inline]] inline bool isAny(Mask mask)
{
    return _mm256_movemask_pd(reinterpret_cast<Lanes>(mask)) != 0;
}

[[gnu::always_inline]] inline Lanes largerOf(Lanes a, Lanes b)
{
    return _mm256_max_pd(a, b);
}

[[gnu::always_inline]] inline Lanes smallerOf(Lanes a, Lanes b)
{
    return _mm256_min_pd(a, b);
}

[[gnu::always_inline]] inline Lanes magnitude(Lanes x)
{
    return _mm256_andnot_pd(all(-0.0), x);
}

[[gnu::always_inline]] inline Lanes withSignOf(Lanes x, Lanes sign)
{
    return _mm256_or_pd(x, _mm256_and_pd(all(-0.0), sign));
}

[[gnu::always_inline]] inline Lanes rootOf(Lanes x)
{
    return _mm256_sqrt_pd(x);
}
