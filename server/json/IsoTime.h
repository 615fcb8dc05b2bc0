#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/Time.h"

namespace hmi {

/// "2024-05-01T06:07:08.1234567Z": UTC, in 100 ns.
std::string isoTime(ZrHmiSrv::Timestamp time);

/// Reads what `isoTime` writes, the fraction with any number of digits or none, of which those
/// beyond 100 ns are dropped. Nothing for any other text and for a time that a timestamp cannot
/// hold.
std::optional<ZrHmiSrv::Timestamp> parseIsoTime(std::string_view text);

/// Reads an ISO 8601 duration of fixed length: weeks, days, hours, minutes, seconds, the last one
/// with a fraction, for example "PT2.5S". Nothing for any other text and for what 64 bits of
/// nanoseconds cannot hold.
std::optional<ZrHmiSrv::Timespan> parseIsoDuration(std::string_view text);
std::string isoDuration(ZrHmiSrv::Timespan span);

}  // namespace hmi
