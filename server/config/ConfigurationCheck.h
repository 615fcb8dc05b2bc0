#pragma once

#include <string>
#include <vector>

#include <boost/json/value.hpp>

namespace hmi {

/// Something in a configuration that nobody meant.
struct Finding {
    enum class Weight {
        warning,  ///< it works, though hardly as meant
        entry,    ///< the extension refuses such an entry of a target system
        fault,    ///< nobody could use it
    };
    Weight weight;
    std::string field;  ///< the names from the root on, with dots; empty: the whole
    std::string text;

    /// For people: "TARGET_SYSTEMS.Filler.ADDRESS: not a string"
    std::string line() const { return field.empty() ? text : field + ": " + text; }
};

/// In the order of the configuration; nothing for an empty one, which is one without a value.
std::vector<Finding> checkConfiguration(const boost::json::value& configuration);

}  // namespace hmi
