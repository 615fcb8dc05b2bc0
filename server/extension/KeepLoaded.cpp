#include "server/extension/KeepLoaded.h"

#include <vector>

namespace hmi {

void keepLoaded(const boost::dll::shared_library& library) {
    // Never destroyed, since that would unload them after all. Called by one thread.
    static auto& kept = *new std::vector<boost::dll::shared_library>;
    kept.push_back(library);
}

}  // namespace hmi
