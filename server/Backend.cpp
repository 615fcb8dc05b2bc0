#include "server/Backend.h"

#include <utility>

namespace hmi {

Backend::Backend(const std::filesystem::path& configurationFile, ZrHmiSrv::Context given,
                 IChangeSink& sink, Metrics& metrics, EventRefresher::IsImported isImported)
    : context(std::move(given)),
      configuration(configurationFile),
      events(sink),
      log(sink),
      refresher(events, calls, metrics, std::move(isImported)),
      host({events, log, configuration, listeners, metrics, [this] { refresher.request(); }}) {}

void Backend::start(const std::filesystem::path& extensionFile) {
    extension = std::make_unique<ExtensionLibrary>(extensionFile, host);
    try {
        extension->init(context);
    } catch (...) {
        listeners.clear();
        throw;
    }
    refresher.start();
}

void Backend::shutDownExtension() {
    refresher.cease();
    // While it starts it may not want to know yet.
    isShutDown = isShutDown || calls.shutdown();
}

void Backend::stop() {
    shutDownExtension();
    refresher.stop();
    listeners.clear();
    extension.reset();
}

std::map<std::string, std::string> Backend::addresses() const {
    const auto targets = configuration.read(*ConfigurationPath::parse("TARGET_SYSTEMS"));
    std::map<std::string, std::string> addresses;
    for (auto target = targets.begin(); target != targets.end(); ++target) {
        const ZrHmiSrv::Value* const address = target->lookup("ADDRESS");
        if (address && address->type() == ZrHmiSrv::ValueType::string)
            addresses.emplace(target.name(), address->get_string());
    }
    return addresses;
}

std::chrono::milliseconds Backend::timeout() const {
    constexpr std::chrono::milliseconds usual{5000};
    const auto configured = configuration.read(*ConfigurationPath::parse("TIMEOUT"));
    return configured.type() == ZrHmiSrv::ValueType::timespan
               ? std::chrono::milliseconds(configured.get_timespan().milliseconds())
               : usual;
}

}  // namespace hmi
