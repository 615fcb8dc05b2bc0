#pragma once

#include "host/Value.h"
#include "targetsystem/TargetSystem.h"

namespace ZrHmiEventLogger {

/// What "Diagnostics" tells of one target system. Waits for nothing: state, counters and the
/// progress of an import are published copies.
ZrHmiSrv::Value diagnosticsOf(const TargetSystem& target);

}  // namespace ZrHmiEventLogger
