#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace hmi {

/// A row of a CSV file as RFC 4180 has it: UTF-8, each line ends with CR LF. A text that a
/// spreadsheet would take for a formula gets an apostrophe in front.
class CsvRow {
public:
    CsvRow& add(std::string_view text);
    CsvRow& add(const char* text) { return add(std::string_view(text)); }
    CsvRow& add(std::uint64_t number);
    /// With the line's end.
    std::string text() && { return std::move(line) + "\r\n"; }

private:
    void part();

    std::string line;
    bool isEmpty = true;
};

/// What a spreadsheet wants at the beginning of a file in order to read it as UTF-8; most other
/// programs want it not.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace hmi
