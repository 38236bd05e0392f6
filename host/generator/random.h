#pragma once

#include <QtGlobal>

#include <cmath>

/**
 * splitmix64: small, fast, and the same on every platform, unlike the
 * standard library's distributions; the generators of recordings and the
 * benchmarks draw their values from it, so that a seed gives the same
 * values everywhere.
 */
class Random
{
public:
    explicit Random(quint64 seed)
        : state(seed)
    { }

    quint64 next()
    {
        quint64 z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }

    /** Uniform in [0, 1). */
    double uniform() { return double(next() >> 11) * 0x1p-53; }
    /** Uniform in [@p low, @p high). */
    double uniform(double low, double high) { return low + (high - low) * uniform(); }
    /** Uniform integer in [@p low, @p high]. */
    qint64 integer(qint64 low, qint64 high)
    {
        return low + qint64(next() % quint64(high - low + 1));
    }
    /** Uniform integer in [0, @p count). */
    int below(int count) { return int(next() % quint64(count)); }

    /** Bell-shaped noise of standard deviation @p sigma (sum of four uniforms). */
    double noise(double sigma)
    {
        const double sum = uniform() + uniform() + uniform() + uniform() - 2.0;
        return sum * std::sqrt(3.0) * sigma;
    }

private:
    quint64 state;
};
