#include "extension/ZrHmiEventLogger.h"
#include "host/IZrHmiSrvExtHost.h"

/// The library's one export: hands the host a new extension object, which the host deletes.
ZRHMISRV_ENTRY int ext_interface(ZrHmiSrv::IZrHmiSrvExtHost* host,
                                 ZrHmiSrv::IZrHmiSrvExt** extension, double* version) {
    if (!extension || !version)
        return 0;
    *extension = nullptr;
    *version = ZrHmiSrv::interface_version;
    if (!host)
        return 0;
    ZrHmiSrv::initialize_api(host);
    try {
        *extension = new ZrHmiEventLogger::ZrHmiEventLogger(host);
    } catch (...) {
        // The host takes the missing object for what it is.
    }
    return 0;
}
