#pragma once

namespace hmi {

/// "1.0.0", as the build was told.
extern const char* const version;

}  // namespace hmi
