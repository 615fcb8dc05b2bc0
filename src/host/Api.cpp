#include <atomic>

#include "host/ApiHost.h"
#include "host/IZrHmiSrvExtHost.h"

namespace ZrHmiSrv {

namespace {

std::atomic<IZrHmiSrvExtHost*> current_host = nullptr;

}  // namespace

void initialize_api(IZrHmiSrvExtHost* host) {
    current_host = host;
}

IZrHmiSrvExtHost* detail::api_host() noexcept {
    return current_host;
}

}  // namespace ZrHmiSrv
