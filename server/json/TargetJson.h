#pragma once

#include <string_view>

#include <boost/json/object.hpp>

#include "server/targets/Gap.h"
#include "server/targets/TargetStatus.h"

namespace hmi {

/// A target system as clients see it.
boost::json::object toJson(const TargetStatus& target, boost::json::storage_ptr storage = {});
std::string_view nameOf(GapReason reason);
/// A stretch of time of which events may be missing, as a row of the list.
boost::json::object toJson(const Gap& gap, boost::json::storage_ptr storage = {});

}  // namespace hmi
