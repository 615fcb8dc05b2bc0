#include "extension/ZrHmiEventLogger.h"
#include "host/IZrHmiSrvExtHost.h"

#ifdef _WIN32
#define ZR_EXTENSION_EXPORT
#else
#define ZR_EXTENSION_EXPORT __attribute__((visibility("default")))
#endif

/// The library's one export: hands the host a new extension object, which the host deletes.
extern "C" ZR_EXTENSION_EXPORT int ext_interface(ZrHmiSrv::IZrHmiSrvExtHost* host,
                                                 ZrHmiSrv::IZrHmiSrvExt** extension,
                                                 double* version) {
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
