#include "server/metrics/Histogram.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace hmi {

void Histogram::observe(std::chrono::nanoseconds duration) noexcept {
    const double seconds = std::chrono::duration<double>(duration).count();
    const auto bound = std::lower_bound(bounds.begin(), bounds.end(), seconds);
    ++counts[static_cast<std::size_t>(std::distance(bounds.begin(), bound))];
    nanoseconds += static_cast<std::uint64_t>(std::max<std::int64_t>(duration.count(), 0));
}

void Histogram::write(PrometheusText& text, std::string_view name, std::string_view help) const {
    text.family(name, "histogram", help);
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        sum += counts[i];
        char bound[16];
        std::snprintf(bound, sizeof bound, "%g", bounds[i]);
        text.part("_bucket", {{"le", bound}}, static_cast<double>(sum));
    }
    sum += counts.back();
    text.part("_bucket", {{"le", "+Inf"}}, static_cast<double>(sum));
    text.part("_sum", {}, static_cast<double>(nanoseconds) / 1e9);
    text.part("_count", {}, static_cast<double>(sum));
}

}  // namespace hmi
