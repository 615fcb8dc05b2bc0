#include "server/metrics/PrometheusText.h"

#include <cstdio>

#include "server/json/Utf8.h"

namespace hmi {

namespace {

void appendLabelValue(std::string& text, std::string_view value) {
    for (const char c : toValidUtf8(value)) {
        if (c == '\n')
            text += "\\n";
        else if (c == '"' || c == '\\')
            text.append("\\").append(1, c);
        else
            text += c;
    }
}

}  // namespace

void PrometheusText::family(std::string_view name, std::string_view type, std::string_view help) {
    current = name;
    content.append("# HELP ").append(name).append(" ").append(help);
    content.append("\n# TYPE ").append(name).append(" ").append(type).append("\n");
}

void PrometheusText::part(std::string_view suffix, Labels labels, double value) {
    content.append(current).append(suffix);
    const char* separator = "{";
    for (const auto& [name, labelValue] : labels) {
        content.append(separator).append(name).append("=\"");
        appendLabelValue(content, labelValue);
        content += '"';
        separator = ",";
    }
    char number[40];
    std::snprintf(number, sizeof number, "%s %.17g\n", labels.size() > 0 ? "}" : "", value);
    content += number;
}

}  // namespace hmi
