#pragma once

#include <filesystem>
#include <memory>

#include "host/IZrHmiSrvExtHost.h"

namespace hmi {

/// An extension library and the extension object that it has made, which goes with this object;
/// the library stays loaded. The host and the listener registry must outlive it.
class ExtensionLibrary {
public:
    /// Throws StartError when the file is no extension of our interface version.
    ExtensionLibrary(const std::filesystem::path& file, ZrHmiSrv::IZrHmiSrvExtHost& host);
    ~ExtensionLibrary();
    ExtensionLibrary(const ExtensionLibrary&) = delete;
    ExtensionLibrary& operator=(const ExtensionLibrary&) = delete;

    /// Throws StartError when the extension refuses.
    void init(const ZrHmiSrv::Context& context);

private:
    struct Library;
    std::unique_ptr<Library> library;
    std::unique_ptr<ZrHmiSrv::IZrHmiSrvExt> extension;  // before its code is unloaded
};

}  // namespace hmi
