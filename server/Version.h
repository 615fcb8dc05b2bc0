#pragma once

namespace hmi {

/// "1.0.0", as the build was told.
extern const char* const version;
/// The compiler, and for what system.
extern const char* const build;

}  // namespace hmi
