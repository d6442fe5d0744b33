#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zdtgen {

// splitmix64: fast and the same on every platform, unlike the standard distributions,
// so that a seed gives the same file everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t Next() {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(((Next() >> 32) * n) >> 32); }
    bool OneIn(std::uint32_t n) { return Below(n) == 0; }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(Next() >> 56); }
    template <typename T, std::size_t N> const T& Pick(const std::array<T, N>& items) { return items[Below(N)]; }

private:
    std::uint64_t m_state;
};

} // namespace zdtgen
