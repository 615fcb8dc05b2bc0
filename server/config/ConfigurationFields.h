#pragma once

#include <boost/json/value.hpp>

#include "host/Value.h"

namespace hmi {

/// How many events are kept of a target system when the configuration does not say.
inline constexpr int defaultEventLimit = 1000;

/// The whole configuration as the extension reads it; no value when it is empty.
ZrHmiSrv::Value configurationValue(const boost::json::value& configuration);

}  // namespace hmi
