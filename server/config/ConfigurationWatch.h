#pragma once

#include <optional>
#include <vector>

#include "host/Value.h"
#include "server/config/ConfigurationPath.h"

namespace hmi {

/// Which changes of the configuration an extension wants to be told of, as it said when it
/// registered its listener: a vector of maps with "flags" and "paths"; "*" in a path stands for
/// any one name.
class ConfigurationWatch {
public:
    /// What is not understood is not watched.
    explicit ConfigurationWatch(const ZrHmiSrv::Value& settings);

    enum class Event : unsigned { valueSet = 16, valueDeleted = 32 };  // bits of "flags"
    struct Match {
        ConfigurationPath path;
        Event event;
    };

    /// What to tell when the value at `path` is set or deleted: a change below a watched path is
    /// told as a set of the watched one. Nothing when nobody watches.
    std::optional<Match> match(const ConfigurationPath& path, bool deleted) const;

private:
    struct Pattern {
        unsigned flags;
        ConfigurationPath path;
    };
    std::vector<Pattern> patterns;
};

}  // namespace hmi
