// Random numbers that are the same on every machine.
#pragma once

#include <cstdint>

namespace gpsbook {

/// Sebastiano Vigna's SplitMix64 (public domain), one 64-bit state. The distributions of the standard library
/// differ between its implementations, so these are our own and use no function of the mathematical library.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }

    /// Evenly spread in [0, 1), in steps of 2^-53.
    double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }

    /// Mean 0, standard deviation 1: the sum of twelve uniform numbers less six, never beyond +-6.
    double Gaussian() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += Uniform();
        return sum;
    }

private:
    std::uint64_t state_;
};

}  // namespace gpsbook
