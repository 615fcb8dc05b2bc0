#include "server/Application.h"

#include <cstdio>

#include "server/Log.h"
#include "server/StartError.h"
#include "server/StopSignal.h"
#include "server/api/PageResource.h"

namespace hmi {

namespace {

/// The name under which the extension is known: its file's, without what a system adds to it.
ZrHmiSrv::Text domainOf(const std::filesystem::path& extension) {
    std::string name = extension.stem().string();
    if (name.starts_with("lib"))
        name.erase(0, 3);
    return ZrHmiSrv::Text(name);
}

}  // namespace

Application::Application(const Options& given)
    : options(given),
      backend(options.config, ZrHmiSrv::Context(domainOf(options.extension)), hub, metrics),
      dispatcher(router, OriginPolicy(options.allowedHosts), lanes, metrics),
      server(io.context(), options.address, options.port, dispatcher, hub) {}

void Application::addRoutes() {
    aboutResource.addRoutes(router);
    eventsResource.addRoutes(router);
    configResource.addRoutes(router);
    commandsResource.addRoutes(router);
    logResource.addRoutes(router);
    metricsResource.addRoutes(router);
    PageResource::addRoutes(router);
    if (simulator) {
        simulatorResource = std::make_unique<SimulatorResource>(*simulator);
        simulatorResource->addRoutes(router);
    }
    router.add(Method::get, "/api/stream", Lane::local, [](const Request&) {
        Response response = Response::error(426, "the stream is for WebSocket clients");
        response.headers.emplace_back("Upgrade", "websocket");
        return response;
    });
}

void Application::run() {
    StopSignal stop(io.context());
    if (!options.plant.empty()) {
        simulator = std::make_unique<SimulatorControl>(options.extension);
        simulator->loadPlant(options.plant);
    }
    backend.start(options.extension);
    aboutResource.setReady(true);
    addRoutes();
    server.start();
    std::printf("listening on %s\n", server.url().c_str());
    std::fflush(stdout);
    stop.wait();
    hmi::log(LogLevel::info, "stopping");
    aboutResource.setReady(false);
    server.stop();
    lanes.join();
    backend.stop();
    simulator.reset();
    io.stop(std::chrono::seconds(1));
}

}  // namespace hmi
