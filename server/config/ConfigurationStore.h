#pragma once

#include <filesystem>
#include <functional>
#include <list>
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

/// What a change would make of the configuration.
struct ConfigurationPreview {
    boost::json::value before;
    boost::json::value after;
    bool isComplete;  ///< else the extension refuses it
};

/// The extension's configuration and the file that it lives in. Thread-safe; of each entry of
/// TARGET_SYSTEMS, and of all the rest, one change comes at a time.
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

    /// What `change` would make of what is accepted now; throws likewise, and changes nothing.
    ConfigurationPreview preview(const ConfigurationPath& path,
                                 const std::optional<boost::json::value>& value);

private:
    struct State {
        boost::json::value document;
        ZrHmiSrv::Value value;
    };
    struct Proposal {
        const ConfigurationPath& path;
        const std::optional<boost::json::value>& value;  ///< none: to delete
        bool startsAgain = false;  ///< whether the server could start with it
    };
    using Proposals = std::list<Proposal>;

    State load(const std::string& text) const;
    ConfigurationPreview checked(const ConfigurationPath& path,
                                 const std::optional<boost::json::value>& value) const
        REQUIRES(fileMutex);
    Proposals::iterator propose(Proposal proposal);
    void withdraw(Proposals::iterator proposal);
    /// Throws ConfigurationConflict, ConfigurationError or std::system_error when the file stays as
    /// it was.
    void keep(Proposals::iterator proposal);
    void expectFileAsKnown() const REQUIRES(fileMutex);
    void rebuild() REQUIRES(mutex);

    const std::filesystem::path file;
    Mutex fileMutex ACQUIRED_BEFORE(mutex);       ///< one writes the file at a time
    std::string fileText GUARDED_BY(fileMutex);   ///< what stands there, as far as we know
    mutable Mutex mutex;                          ///< guards all below; nothing is called under it
    boost::json::value accepted GUARDED_BY(mutex);  ///< what is in force
    Proposals proposals GUARDED_BY(mutex);          ///< the extension is being asked about them
    State state GUARDED_BY(mutex);                  ///< what is accepted, with the proposals
};

}  // namespace hmi
