#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string_view>

#include "server/metrics/PrometheusText.h"

namespace hmi {

/// How long something took, from a millisecond to half a minute. Thread-safe.
class Histogram {
public:
    void observe(std::chrono::nanoseconds duration) noexcept;
    void write(PrometheusText& text, std::string_view name, std::string_view help) const;

private:
    static constexpr std::array<double, 10> bounds{0.001, 0.005, 0.01, 0.05, 0.1,
                                                   0.5,   1,     5,    10,   30};  // seconds

    std::array<std::atomic<std::uint64_t>, bounds.size() + 1> counts{};
    std::atomic<std::uint64_t> nanoseconds = 0;
};

}  // namespace hmi
