#!/usr/bin/env python3
"""Do the tests notice? Breaks one line at a time, builds, runs the tests, and puts it right again.

usage: scripts/mutate.py BUILD [FIRST [LAST]]      in a work tree of its own; BUILD: its build folder
Says of each mutation whether a test failed (caught), none did (SURVIVED) or it did not compile, and
closes with the count. A line that is no longer there is told, not skipped silently.
"""
import subprocess
import sys
from pathlib import Path

# The tests of each part, those first that find most. All but the last see the part alone.
CORE = ["extension_test", "random_test", "stress_test", "fault_test"]
TESTS = {
    "src/events": ["events_test", *CORE],
    "src/targetsystem/proxy": ["proxy_test", *CORE],
    "src/targetsystem": ["targetsystem_test", "localization_test", *CORE],
    "src/localization": ["localization_test", "extension_test"],
    "src/extension": CORE,
    "src/host": ["host_test", "events_test", "server_test", "extension_test"],
    "server": ["server_test", "endtoend_test", "stress_test"],
}
# What a run needs besides the program itself.
NEEDED = {"endtoend_test": ["hmi-server", "test_extension", "ZrHmiEventLogger"]}
# Only what is quick: the store's long comparison concerns the store alone.
ARGUMENTS = {"events_test": ["--gtest_filter=-*AgainstWalk*"],
             "random_test": ["--gtest_filter=*Once*"],
             "stress_test": ["--gtest_filter=-Stress*"]}

# In place of a statement; an empty one below an "if" does not compile.
NOTHING = "static_cast<void>(0);"

MUTATIONS = [
    ("src/events/Conversion.cpp", ": Severity::info;", ": Severity::warning;"),
    ("src/events/Conversion.cpp", "return state <= 4 ?", "return state <= 3 ?"),
    ("src/events/Conversion.cpp", "ticksOf(cleared) > ticksOf(raised) ?",
     "toTimestamp(cleared) > toTimestamp(raised) ?"),
    ("src/events/ChangedAlarms.cpp", "(removed && !alarm.time_cleared().isset())", "false"),
    ("src/events/ChangedAlarms.cpp", "identities.settle(change.key);", NOTHING),
    ("src/events/ChangedAlarms.cpp", "identities.forget(change.key);", NOTHING),
    ("src/events/ChangedAlarms.cpp", "    if (change.key.number)\n", ""),
    ("src/events/RaisedAlarms.cpp", "alarm.set_alarm_state(AlarmState::standard);", NOTHING),
    ("src/events/RaisedAlarms.cpp", "key.timeRaised = alarm.time_raised();", NOTHING),
    ("src/events/RaisedAlarms.cpp", "return isRaise ? raise(source, true) : void();", "return;"),
    ("src/events/RaisedAlarms.cpp", "identities.contains(key) && Value(alarm) == Value(*stored)",
     "identities.contains(key)"),
    ("src/events/AlarmLifecycle.cpp", "VARIANT_TRUE && isRaisedLater)", "VARIANT_TRUE && false)"),
    ("src/events/AlarmLifecycle.cpp", "if (!isRaise && !raisedAlarms", "if (false && !raisedAlarms"),
    ("src/events/ImportedIdentities.cpp", "&keys().sourceName,", ""),
    ("src/events/ImportedIdentities.cpp", ", &keys().data}", "}"),
    ("src/events/LoggedEventImport.cpp",
     "    lifecycle.imported() = {};\n    notifications.stopRecording();",
     "    notifications.stopRecording();"),
    ("src/events/LoggedEventImport.cpp", "    notifications.stopRecording();\n    return", "    return"),
    ("src/events/LoggedEventImport.cpp", "state.raised.insert(alarm).second &&", ""),
    ("src/events/ImportSnapshot.cpp", "|| raisedAgain.contains(entry.instance)", "|| false"),
    ("src/events/ImportSnapshot.cpp", "entry.keptId = ids.take(entry.key);", NOTHING),
    ("src/events/ImportSnapshot.cpp", "return entry.key->number ||", "return true ||"),
    ("src/events/ImportSnapshot.cpp", "clearedKeys.contains(keyOfCleared(*entry.key, alarm))", "false"),
    ("src/events/EventParameters.cpp", "if (static_cast<ULONG>(layout.count) != count)", "if (false)"),
    ("src/events/AlarmConfirmation.cpp", "current->get() == alarm->get() ?", "true ?"),
    ("src/events/EventStore.cpp", "    if (!context.isOver())\n", ""),
    ("src/targetsystem/TargetConnection.cpp", "        hostIsStale = true;\n    failedToImport = true;",
     "        static_cast<void>(0);\n    failedToImport = true;"),
    ("src/targetsystem/TargetConnection.cpp", "settle(up, wasDown || failedToImport);", "settle(up, wasDown);"),
    ("src/targetsystem/TargetConnection.cpp", "    imported = false;\n    if (SUCCEEDED(hr))",
     "    if (SUCCEEDED(hr))"),
    ("src/targetsystem/TargetConnection.cpp",
     "        // Also what was asked for on the connection before, while the import ran.\n"
     "        with.texts.clearCache();\n", ""),
    ("src/targetsystem/TextLookup.cpp", "connection.preloadsTranslations() &&", ""),
    ("src/targetsystem/LoggerTexts.cpp", "return text.empty() ? Value() : Value(text);", "return text;"),
    ("src/targetsystem/ReasonText.cpp", '"MaximumSizeReached"', '"Deleted"'),
    ("src/targetsystem/TargetSystem.cpp", "        retired = true;", NOTHING),
    ("src/targetsystem/TargetSystem.cpp", "    logging.close(deadline);", "    static_cast<void>(deadline);"),
    ("src/targetsystem/FnxHelper.cpp", "given.size() < netIdNumbers", "given.size() <= netIdNumbers"),
    ("src/targetsystem/HostGate.h", "if (!closed)", "if (true)"),
    ("src/targetsystem/Keeper.cpp", "        refused = true;", NOTHING),
    ("src/targetsystem/Keeper.cpp", "        target.prepare();\n        ImportResultPtr", "        ImportResultPtr"),
    ("src/targetsystem/proxy/EventCookie.cpp", "        keep(ended);\n        throw;", "        throw;"),
    ("src/extension/OwedReset.cpp", "            owed = true;\n", "            owed = false;\n"),
    ("src/extension/AlarmProvider.cpp", "reset.owe();", NOTHING),
    ("src/extension/HostLogging.cpp", "what && *what ? what", "what ? what"),
    ("src/extension/Configuration.cpp", "std::min<double>(limit, std::numeric_limits<std::int32_t>::max())", "limit"),
    ("src/extension/Diagnostics.cpp", 'add("importedMessagesCount", statistics.importedMessagesCount);',
     'add("importedMessagesCount", statistics.cachedMessagesCount);'),
    ("src/extension/ConfigurationChanges.cpp", "    reset.request();\n    try {", "    try {"),
    ("src/extension/ConfigurationChanges.cpp", "if (!prepared || replacement", "if (replacement"),
    ("src/extension/ZrHmiEventLogger.cpp", "    reset.settle();\n", ""),
    ("src/extension/TargetSystems.cpp", "        keeper->retire(deadline);", "        keeper->retire({});"),
    ("src/host/WorkerPool.cpp", "if (aborted || timer.period", "if (timer.period"),
    ("src/host/ValueEquality.cpp", "a.name == b.name && a.value", "a.value"),
    ("server/confirmations/ConfirmationService.cpp", "*wish.timeRaised == event.alarm()->time_raised()",
     "event.alarm() != nullptr"),
    ("server/http/OriginPolicy.cpp", "if (!host || host->has_userinfo())", "if (!host)"),
    ("server/http/OriginPolicy.cpp", "if (!isAddress(*host) && !names.contains(hostOf(*host)))",
     "if (!isAddress(*host) && !hostOf(*host).starts_with(\"localhost\"))"),
    ("server/lanes/CappedLane.cpp", "work.running >= limits.running", "work.running > limits.running"),
    ("server/users/Role.cpp", 'path[1] == "config" || path[1] == "log"', 'path[1] == "config"'),
    ("server/events/EventBook.cpp", "    lastKnown.erase(event->id);\n    insert", "    insert"),
    ("server/events/EventBook.cpp", "    while (current.size() > capacity) {", "    while (current.size() > capacity + 1) {"),
    ("server/events/EventBook.cpp", "            reset->handedOver.insert(target);", NOTHING),
    ("server/events/EventBook.cpp", "    lastKnown.makeRoomFor(lost);\n", ""),
    ("server/extension/EventRefresher.cpp", "    isComplete = false;\n", ""),
    ("server/json/ParseJson.cpp", "options.max_depth = maxDepth;", "options.max_depth = 2 * maxDepth;"),
    ("server/config/ConfigurationStore.cpp", "    if (now != fileText)", "    if (false)"),
    ("server/users/SignInLimiter.cpp", "    fail(nameKey(name), now);\n", ""),
]


def tests_of(path):
    return TESTS[max((part for part in TESTS if path.startswith(part + "/")), key=len)]


def builds(build, test):
    return subprocess.run(["ninja", "-C", build, "-j2", test, *NEEDED.get(test, [])],
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def passes(build, test):
    try:
        return subprocess.run([f"{build}/bin/{test}", "--gtest_fail_fast",
                               *ARGUMENTS.get(test, [])], timeout=600,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def verdict(build, path, old, new):
    file = Path(path)
    text = file.read_text(encoding="utf-8")
    if text.count(old) != 1:
        return f"stands there {text.count(old)} times: give it another line"
    file.write_text(text.replace(old, new), encoding="utf-8")
    try:
        for test in tests_of(path):
            if not builds(build, test):
                return "does not compile"
            if not passes(build, test):
                return f"caught by {test}"
        return "SURVIVED"
    finally:
        file.write_text(text, encoding="utf-8")


def main():
    build = sys.argv[1]
    bounds = [int(number) for number in sys.argv[2:4]]
    first = bounds[0] if bounds else 0
    last = bounds[1] if len(bounds) > 1 else len(MUTATIONS)
    results = []
    for number, (path, old, new) in list(enumerate(MUTATIONS))[first:last]:
        results.append(verdict(build, path, old, new))
        print(f"{number:2} {path}: {old.strip().splitlines()[0][:60]}: {results[-1]}", flush=True)
    caught = sum(result.startswith("caught") for result in results)
    survived = results.count("SURVIVED")
    print(f"{caught} of {caught + survived} caught")


if __name__ == "__main__":
    main()
