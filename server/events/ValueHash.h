#pragma once

#include <cstddef>

#include "host/Value.h"

namespace hmi {

/// Equal for equal values.
std::size_t hashOf(const ZrHmiSrv::Value& value);

}  // namespace hmi
