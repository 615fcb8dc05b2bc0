#pragma once

#include "robustness/LoggerContent.h"
#include "support/RecordingHost.h"
#include "targetsystem/TargetSystem.h"

namespace bridge_test {

/// Compares a settled target system with what its logger holds and with what the host shows, and
/// its counters with its content. Empty when all of it agrees.
Findings checkContent(ZrHmiEventLogger::TargetSystem& target, RecordingHost& host,
                      const LoggerContent& logger);

}  // namespace bridge_test
