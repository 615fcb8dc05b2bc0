#include "server/extension/ExtensionLibrary.h"

#include <string>
#include <type_traits>

#include <boost/dll/shared_library.hpp>

#include "server/StartError.h"
#include "server/extension/KeepLoaded.h"

namespace hmi {

struct ExtensionLibrary::Library {
    boost::dll::shared_library file;
};

namespace {

std::string describe(const ZrHmiSrv::ResultPair& result) {
    const std::string code = std::to_string(static_cast<unsigned>(result.result()));
    return result.text().empty() ? code : code + " (" + std::string(result.text().view()) + ")";
}

}  // namespace

ExtensionLibrary::ExtensionLibrary(const std::filesystem::path& file,
                                   ZrHmiSrv::IZrHmiSrvExtHost& host)
    : library(std::make_unique<Library>()) {
    if (!std::filesystem::exists(file))
        throw StartError(file.string() + ": no such file");
    boost::dll::fs::error_code error;
    // Absolute, because the loader would look for a bare name elsewhere.
    library->file.load(std::filesystem::absolute(file), error);
    if (error)
        throw StartError(file.string() + ": cannot be loaded as a library: " + error.message());
    keepLoaded(library->file);
    if (!library->file.has("ext_interface"))
        throw StartError(file.string() + ": no extension, it does not export ext_interface");
    const auto create =
        library->file.get<std::remove_pointer_t<ZrHmiSrv::ExtInterface>>("ext_interface");
    ZrHmiSrv::IZrHmiSrvExt* created = nullptr;
    double version = 0;
    const int answer = create(&host, &created, &version);
    extension.reset(created);
    if (answer != 0 || !created)
        throw StartError(file.string() + ": the extension could not be created");
    if (version != ZrHmiSrv::interface_version)
        throw StartError(file.string() + ": the extension is of another interface version");
}

ExtensionLibrary::~ExtensionLibrary() = default;

void ExtensionLibrary::init(const ZrHmiSrv::Context& context) {
    const ZrHmiSrv::ResultPair result = extension->init(context);
    if (!result.succeeded())
        throw StartError("the extension refused to start with result " + describe(result));
}

}  // namespace hmi
