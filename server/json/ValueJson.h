#pragma once

#include <boost/json/value.hpp>

#include "host/Value.h"

namespace hmi {

/// The server's values as JSON: times as ISO 8601 texts, bytes as base64, unset values and numbers
/// that JSON does not know as null.
boost::json::value toJson(const ZrHmiSrv::Value& value, boost::json::storage_ptr storage = {});
boost::json::string toJson(std::string_view text, boost::json::storage_ptr storage = {});
/// Null when the time is not set.
boost::json::value toJson(ZrHmiSrv::Timestamp time, boost::json::storage_ptr storage = {});

ZrHmiSrv::Value fromJson(const boost::json::value& json);

}  // namespace hmi
