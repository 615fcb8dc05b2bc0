#pragma once

#include <boost/dll/shared_library.hpp>

namespace hmi {

/// Keeps a library loaded until the process ends: what it has set up for itself may outlive those
/// who use it here.
void keepLoaded(const boost::dll::shared_library& library);

}  // namespace hmi
