#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace hmi {

/// Writes metrics in Prometheus' text format: a family, then its samples.
class PrometheusText {
public:
    using Labels = std::initializer_list<std::pair<std::string_view, std::string_view>>;

    /// `type`: "counter", "gauge" or "histogram".
    void family(std::string_view name, std::string_view type, std::string_view help);
    void sample(Labels labels, double value) { part({}, labels, value); }
    /// A sample whose name is the family's and this.
    void part(std::string_view suffix, Labels labels, double value);
    void append(std::string_view metrics) { content += metrics; }
    const std::string& text() const noexcept { return content; }

private:
    std::string content;
    std::string current;
};

}  // namespace hmi
