#pragma once

#include "server/metrics/PrometheusText.h"

namespace hmi {

/// What the system says of the process, under the names that monitoring knows; where it says so in
/// files under /proc.
void writeProcess(PrometheusText& text);

}  // namespace hmi
