#pragma once

namespace ZrHmiSrv {

class IZrHmiSrvExtHost;

namespace detail {

/// The host given to `initialize_api`, or null.
IZrHmiSrvExtHost* api_host() noexcept;

}  // namespace detail
}  // namespace ZrHmiSrv
