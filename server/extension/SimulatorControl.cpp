#include "server/extension/SimulatorControl.h"

#include <boost/dll/shared_library.hpp>

#include "server/JsonFile.h"
#include "server/StartError.h"
#include "server/extension/KeepLoaded.h"
#include "server/json/ParseJson.h"
#include "simulator/Control.h"

namespace hmi {

namespace {

constexpr const char* libraryName = "ZrEventLoggerFnxProxy";

boost::dll::shared_library open(const std::filesystem::path& extension) {
    namespace load_mode = boost::dll::load_mode;
    boost::dll::fs::error_code error;
    boost::dll::shared_library library;
    library.load(std::filesystem::absolute(extension).parent_path() / libraryName,
                 load_mode::append_decorations, error);
    if (error)
        library.load(libraryName, load_mode::append_decorations | load_mode::search_system_folders,
                     error);
    if (error)
        throw StartError(std::string("the library ") + libraryName +
                         " cannot be loaded: " + error.message());
    keepLoaded(library);
    return library;
}

template <class Function>
Function* find(const boost::dll::shared_library& library, const char* name) {
    if (!library.has(name))
        throw StartError(
            "--plant needs the stand-in of the proxy library; the one that is "
            "installed has no " +
            std::string(name));
    return &library.get<Function>(name);
}

}  // namespace

struct SimulatorControl::Library {
    explicit Library(const std::filesystem::path& extension)
        : file(open(extension)),
          loadPlant(find<decltype(ZrSimulatorLoadPlant)>(file, "ZrSimulatorLoadPlant")),
          apply(find<decltype(ZrSimulatorApply)>(file, "ZrSimulatorApply")),
          status(find<decltype(ZrSimulatorStatus)>(file, "ZrSimulatorStatus")),
          shutdown(find<decltype(ZrSimulatorShutdown)>(file, "ZrSimulatorShutdown")),
          free(find<decltype(ZrSimulatorFree)>(file, "ZrSimulatorFree")) {}
    ~Library() { shutdown(); }

    SimulatorAnswer take(int code, char* text) const {
        const std::unique_ptr<char, decltype(free)> owner(text, free);
        return {static_cast<unsigned>(code), text ? text : "{}"};
    }

    const boost::dll::shared_library file;
    decltype(ZrSimulatorLoadPlant)* const loadPlant;
    decltype(ZrSimulatorApply)* const apply;
    decltype(ZrSimulatorStatus)* const status;
    decltype(ZrSimulatorShutdown)* const shutdown;
    decltype(ZrSimulatorFree)* const free;
};

SimulatorControl::SimulatorControl(const std::filesystem::path& extension)
    : library(std::make_unique<Library>(extension)) {}

SimulatorControl::~SimulatorControl() = default;

void SimulatorControl::loadPlant(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    try {
        parseJson(text);
    } catch (const JsonError& error) {
        throw StartError(file.string() + ": " + error.what());
    }
    char* answer = nullptr;
    const int code = library->loadPlant(text.c_str(), &answer);
    const SimulatorAnswer taken = library->take(code, answer);
    if (taken.status == 200)
        return;
    const boost::json::value body = parseJson(taken.body);
    const boost::json::value* const reason =
        body.is_object() ? body.as_object().if_contains("error") : nullptr;
    throw StartError(file.string() + ": " +
                     (reason && reason->is_string() ? std::string(reason->get_string())
                                                    : "refused by the simulator"));
}

SimulatorAnswer SimulatorControl::apply(const std::string& netId,
                                        const std::string& actions) const {
    char* answer = nullptr;
    const int code = library->apply(netId.c_str(), actions.c_str(), &answer);
    return library->take(code, answer);
}

SimulatorAnswer SimulatorControl::status(const std::string& netId) const {
    char* answer = nullptr;
    const int code = library->status(netId.c_str(), &answer);
    return library->take(code, answer);
}

}  // namespace hmi
