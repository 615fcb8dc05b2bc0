#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <tuple>

#include "server/metrics/PrometheusText.h"

namespace hmi {

/// How long something took. Thread-safe.
class Histogram {
public:
    using Bounds = std::array<double, 10>;  // seconds
    static constexpr Bounds ofRequests{0.001, 0.005, 0.01, 0.05, 0.1, 0.5, 1, 5, 10, 30};
    static constexpr Bounds ofCalls{0.00001, 0.00005, 0.0001, 0.0005, 0.001,
                                    0.005,   0.01,    0.1,    1,      10};

    explicit Histogram(const Bounds& bounds = ofRequests) : bounds(bounds) {}

    void observe(std::chrono::nanoseconds duration) noexcept;
    void write(PrometheusText& text, std::string_view name, std::string_view help) const;

private:
    const Bounds bounds;
    std::array<std::atomic<std::uint64_t>, std::tuple_size_v<Bounds> + 1> counts{};
    std::atomic<std::uint64_t> nanoseconds = 0;
};

}  // namespace hmi
