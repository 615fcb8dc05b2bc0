#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace hmi {

/// An answer of the simulator: a status numbered as in HTTP, and JSON.
struct SimulatorAnswer {
    unsigned status;
    std::string body;
};

/// The simulated runtimes that the stand-in proxy library holds. Loads the library that the
/// extension uses as well, and stops its threads at the end: destroy the extension first.
class SimulatorControl {
public:
    /// Looks for the library beside the extension first. Throws StartError, also for a proxy
    /// library without simulated runtimes.
    explicit SimulatorControl(const std::filesystem::path& extension);
    ~SimulatorControl();
    SimulatorControl(const SimulatorControl&) = delete;
    SimulatorControl& operator=(const SimulatorControl&) = delete;

    /// Throws StartError, which names the file and the field.
    void loadPlant(const std::filesystem::path& file);
    /// Any thread.
    SimulatorAnswer apply(const std::string& netId, const std::string& actions) const;
    SimulatorAnswer status(const std::string& netId) const;

private:
    struct Library;
    std::unique_ptr<Library> library;
};

}  // namespace hmi
