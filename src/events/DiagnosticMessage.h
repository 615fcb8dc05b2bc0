#pragma once

#include <initializer_list>

#include "host/Event.h"

namespace ZrHmiEventLogger {

/// An entry of the diagnostic log: raised now, its parameters numbered "0", "1", ... in their
/// order (at most eight). The domain is set by whoever hands it to the host.
ZrHmiSrv::Message diagnosticMessage(ZrHmiSrv::Text name,
                                    std::initializer_list<ZrHmiSrv::Value> parameters,
                                    ZrHmiSrv::Severity severity = ZrHmiSrv::Severity::unspecified);

}  // namespace ZrHmiEventLogger
