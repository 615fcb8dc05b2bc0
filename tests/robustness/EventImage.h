#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/Event.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// What an event says, as one line, however it is told: two images are equal when host and
/// logger mean the same event in the same state.
using EventImages = std::multiset<std::string>;

std::string imageOf(const ZrHmiSrv::Alarm& alarm);
std::string imageOf(const ZrHmiSrv::Message& message);
std::string imageOf(const ZrHmiSrv::Event& event);

std::string imageOf(ZrEventLoggerFnxProxyLib::IZrAlarm& alarm);
/// The other image that is as true: a clear that is not later than the raise shows only when the
/// host was notified of it.
std::string unclearedImageOf(ZrEventLoggerFnxProxyLib::IZrAlarm& alarm);
std::string imageOf(ZrEventLoggerFnxProxyLib::IZrLoggedEvent& event);

/// The name of an event's source, by which tests tell alarms apart.
std::string sourceOf(const ZrHmiSrv::Alarm& alarm);

/// What a check has found, one line each.
using Findings = std::vector<std::string>;

/// Adds a line for each image that only one side has.
void compareImages(Findings& findings, const char* here, const EventImages& a, const char* there,
                   const EventImages& b);

}  // namespace bridge_test
