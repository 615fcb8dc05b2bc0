#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include <boost/json/value.hpp>

#include "host/Result.h"
#include "host/Value.h"
#include "platform/Mutex.h"
#include "server/config/ConfigurationPath.h"

namespace hmi {

/// A change that the configuration cannot take; the text is for the client.
class ConfigurationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The file is no longer as this server read or wrote it; the text is for the client.
class ConfigurationConflict : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What became of a change.
struct ConfigurationChange {
    ZrHmiSrv::ResultPair answer;  ///< of the extension
    std::string notKept;          ///< why the file could not be written, though it is in force
};

/// The extension's configuration and the file that it lives in. Reading is thread-safe; changes
/// come one at a time.
class ConfigurationStore {
public:
    /// Throws StartError, which names the file and the field.
    explicit ConfigurationStore(std::filesystem::path file);

    /// As it stands in the file; nothing when there is nothing at the path.
    std::optional<boost::json::value> get(const ConfigurationPath& path) const;
    /// As the extension reads it: no value when there is nothing.
    ZrHmiSrv::Value read(const ConfigurationPath& path) const;

    /// Sets the value at the path, or deletes it when there is none, and asks `accept`, which
    /// already reads the new state; called with no lock held. If accepted the file is written,
    /// otherwise the former state comes back. Before `accept` is asked it throws
    /// ConfigurationError for what the server could not start with again, ConfigurationConflict,
    /// or std::system_error when there is no room for the new file.
    ConfigurationChange change(const ConfigurationPath& path,
                               std::optional<boost::json::value> value,
                               const std::function<ZrHmiSrv::ResultPair()>& accept);

private:
    struct State {
        boost::json::value document;
        ZrHmiSrv::Value value;
    };
    State load() const;
    void expectFileAsKnown() const;
    State stateAfter(const ConfigurationPath& path, std::optional<boost::json::value> value) const;
    void swap(State& other);

    const std::filesystem::path file;
    std::string fileText;  ///< what stands in the file; of the changes, of which one runs at a time
    mutable Mutex mutex;  ///< guards the state; nothing is called under it
    State state GUARDED_BY(mutex);
};

}  // namespace hmi
