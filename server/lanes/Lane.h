#pragma once

#include <cstdint>
#include <string>

namespace hmi {

/// The kinds of work that have threads of their own, so that none takes another's.
enum class Lane : std::uint8_t {
    local,          ///< never waits for the extension
    lists,          ///< waits for texts, but not for long
    longLists,      ///< waits for nothing, but takes time and memory
    longLocalized,  ///< the same with texts, for which it waits
    history,        ///< waits for the disk
    confirmations,  ///< from here on: calls of the extension, as long as they take
    commands,
    configuration,  ///< one at a time for each entry
    details,        ///< the texts that a client looks at
    texts,          ///< the texts that are fetched beside the requests
};

/// Where a piece of work belongs; the target system is empty when it concerns none or many.
struct Place {
    Lane lane;
    std::string target = {};
};

}  // namespace hmi
