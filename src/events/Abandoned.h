#pragma once

namespace ZrHmiEventLogger {

/// Leaves whatever works for a target that is over, between two calls of the proxy. It is no news
/// and thus no std::exception: nobody reports it.
struct Abandoned {};

}  // namespace ZrHmiEventLogger
