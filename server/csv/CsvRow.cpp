#include "server/csv/CsvRow.h"

#include <algorithm>
#include <array>

#include "server/json/Utf8.h"

namespace hmi {

namespace {

/// The full-width signs are formulas to East Asian spreadsheets.
bool isFormula(std::string_view text) {
    constexpr std::array<std::string_view, 11> signs{
        "=", "+", "-", "@", "\t", "\r", "\n", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"};
    return std::any_of(signs.begin(), signs.end(),
                       [&](std::string_view sign) { return text.starts_with(sign); });
}

/// Some spreadsheets part cells at semicolons or tabs: there a formula could begin in the middle.
bool isQuoted(std::string_view text) {
    return text.find_first_of("\",;\t\r\n") != std::string_view::npos || text.starts_with(' ') ||
           text.ends_with(' ');
}

}  // namespace

void CsvRow::part() {
    if (!isEmpty)
        line += ',';
    isEmpty = false;
}

CsvRow& CsvRow::add(std::string_view text) {
    part();
    const std::string valid = (isFormula(text) ? "'" : "") + toValidUtf8(text);
    if (!isQuoted(valid)) {
        line += valid;
        return *this;
    }
    line += '"';
    for (const char c : valid)
        line.append(c == '"' ? 2 : 1, c);
    line += '"';
    return *this;
}

CsvRow& CsvRow::add(std::uint64_t number) {
    part();
    line += std::to_string(number);
    return *this;
}

}  // namespace hmi
