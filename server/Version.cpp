#include "server/Version.h"

namespace hmi {

const char* const version = HMI_VERSION;

}  // namespace hmi
