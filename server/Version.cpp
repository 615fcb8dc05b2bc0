#include "server/Version.h"

namespace hmi {

const char* const version = HMI_VERSION;
const char* const build = HMI_BUILD;

}  // namespace hmi
