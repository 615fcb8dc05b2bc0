#pragma once

#include <string>
#include <vector>

#include "robustness/LoggerContent.h"
#include "support/RecordingHost.h"
#include "target/TargetSystem.h"

namespace bridge_test {

using Findings = std::vector<std::string>;

/// Compares a settled target system with what its logger holds and with what the host shows, and
/// its counters with its content. Empty when all of it agrees.
Findings checkContent(ZrHmiEventLogger::TargetSystem& target, RecordingHost& host,
                      const LoggerContent& logger);

/// One line for each image that only one side has.
void compareImages(Findings& findings, const char* here, const EventImages& a, const char* there,
                   const EventImages& b);

}  // namespace bridge_test
