#pragma once

#include <optional>
#include <string>

#include <boost/json/value.hpp>

#include "host/Value.h"

namespace hmi {

/// The first thing in a configuration that nobody could use, for people: "TARGET_SYSTEMS.Filler.
/// ADDRESS: not a string". An entry without its fields is left to the extension to judge, and so
/// is the time-out.
std::optional<std::string> findFieldFault(const boost::json::value& configuration);

/// Why no target system could use the time-out of a configuration, for people.
std::optional<std::string> findTimeoutFault(const boost::json::value& configuration);

/// The whole configuration as the extension reads it; no value when it is empty.
ZrHmiSrv::Value configurationValue(const boost::json::value& configuration);

}  // namespace hmi
