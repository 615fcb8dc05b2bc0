#pragma once

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json/object.hpp>

namespace bridge_test {

/// What happens in a plant, one after the other: actions of the simulated runtime "Filler", and
/// those of the people around it, which begin with a capital letter.
///   Replace        the target is configured anew and imports; also while a call of it is paused
///   Reset          another target is configured anew, and the host asks for all events
///   ForceReconnect the command
///   AwaitImport    until the target was imported, or hangs in a call that is paused
///   Confirm        an operator confirms "alarm"
///   Settle         all calls and notifications are let go, and the server is looked at
/// All events are of one class, and an alarm has the source of its name.
using RandomActions = std::vector<boost::json::object>;

/// Alarms of few names and few times, so that they meet.
RandomActions randomActions(std::mt19937& random, bool numbered);

/// As `toText` wrote them.
RandomActions parseActions(std::string_view text);
std::string toText(const RandomActions& actions);

}  // namespace bridge_test
