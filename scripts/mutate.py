#!/usr/bin/env python3
"""Do the tests notice? Breaks one line at a time, builds, runs the tests, and puts it right again.

usage: scripts/mutate.py [FIRST [LAST]]        in a work tree of its own, with build/release configured
Says of each mutation whether a test failed (caught), none did (SURVIVED) or it did not compile, and
closes with the count. A line that is no longer there is told, not skipped silently.
"""
import subprocess
import sys
from pathlib import Path

TESTS = ["events_test", "targetsystem_test", "extension_test", "server_test", "localization_test",
         "host_test", "proxy_test", "random_test", "endtoend_test"]
ARGUMENTS = {"random_test": ["--gtest_filter=*Once*"]}

MUTATIONS = [
    ("src/events/Conversion.cpp", ": Severity::info;", ": Severity::warning;"),
    ("src/events/Conversion.cpp", "return state <= 4 ?", "return state <= 3 ?"),
    ("src/events/ChangedAlarms.cpp", "(removed && !alarm.time_cleared().isset())", "false"),
    ("src/events/ChangedAlarms.cpp", "identities.settle(change.key);", ";"),
    ("src/events/RaisedAlarms.cpp", "alarm.set_alarm_state(AlarmState::standard);", ";"),
    ("src/events/RaisedAlarms.cpp", "key.timeRaised = alarm.time_raised();", ";"),
    ("src/events/ImportedIdentities.cpp", "&keys().sourceName,", ""),
    ("src/events/ImportedIdentities.cpp", ", &keys().data}", "}"),
    ("src/events/LoggedEventImport.cpp", "    lifecycle.imported() = {};\n    notifications.startRecording();",
     "    notifications.startRecording();"),
    ("src/events/LoggedEventImport.cpp", "    notifications.stopRecording();\n    return", "    return"),
    ("src/events/ImportSnapshot.cpp", "|| raisedAgain.contains(entry.instance)", "|| false"),
    ("src/events/ImportSnapshot.cpp", "entry.keptId = ids.take(entry.key);", ";"),
    ("src/events/AlarmConfirmation.cpp", "E_FAIL", "S_OK"),
    ("src/targetsystem/TargetConnection.cpp", "        hostIsStale = true;\n    failedToImport = true;",
     "        ;\n    failedToImport = true;"),
    ("src/targetsystem/TargetConnection.cpp", "!up || !imported || !eventCookie.advised()", "!up || !imported"),
    ("src/targetsystem/TargetConnection.cpp", "settle(up, wasDown || failedToImport);", "settle(up, wasDown);"),
    ("src/targetsystem/TargetConnection.cpp",
     "    } catch (...) {\n        hr = E_FAIL;\n        with.context.logging", "    } catch (...) {\n        return E_FAIL;\n        with.context.logging"),
    ("src/targetsystem/TargetConnection.cpp", "        // Also what was asked for on the connection before, while the import ran.\n        with.texts.clearCache();\n", ""),
    ("src/targetsystem/TextLookup.cpp", "connection.preloadsTranslations() &&", ""),
    ("src/targetsystem/LoggerTexts.cpp", "return text.empty() ? Value() : Value(text);", "return text;"),
    ("src/targetsystem/ReasonText.cpp", '"MaximumSizeReached"', '"Deleted"'),
    ("src/targetsystem/TargetSystem.cpp", "    retired = true;", "    ;"),
    ("src/targetsystem/FnxHelper.cpp", "given.size() < netIdNumbers", "given.size() <= netIdNumbers"),
    ("src/extension/OwedReset.cpp", "            owed = true;\n", "            ;\n"),
    ("src/extension/HostGate.h", "if (!closed)", "if (true)"),
    ("src/extension/Configuration.cpp", "std::min<double>(limit, std::numeric_limits<std::int32_t>::max())", "limit"),
    ("src/extension/Diagnostics.cpp", 'add("importedMessagesCount", statistics.importedMessagesCount);',
     'add("importedMessagesCount", statistics.cachedMessagesCount);'),
    ("src/extension/ConfigurationChanges.cpp", "    reset.request();\n    if (former)", "    if (former)"),
    ("src/extension/ZrHmiEventLogger.cpp", "    reset.settle();\n", ""),
    ("src/extension/TargetSystems.cpp", "kept.keeper->retire(deadline);", ";"),
    ("src/host/WorkerPool.cpp", "if (aborted || timer.period", "if (timer.period"),
    ("server/confirmations/ConfirmationService.cpp", "*wish.timeRaised == event.alarm()->time_raised()", "true"),
    ("server/http/OriginPolicy.cpp", "if (!host || host->has_userinfo())", "if (!host)"),
    ("server/lanes/CappedLane.cpp", "work.running >= limits.running", "work.running > limits.running"),
    ("server/users/Role.cpp", 'path[1] == "config" || path[1] == "log"', 'path[1] == "config"'),
    ("server/events/EventBook.cpp", "    lastKnown.erase(event->id);\n", ""),
    ("server/events/EventBook.cpp", "    while (current.size() > capacity) {", "    while (current.size() > capacity + 1) {"),
]


def run(test):
    try:
        return subprocess.run([f"build/release/bin/{test}", *ARGUMENTS.get(test, [])], timeout=240,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def verdict(path, old, new):
    file = Path(path)
    text = file.read_text(encoding="utf-8")
    if old not in text:
        return "is gone: give it another line"
    if old == new:
        return "changes nothing"
    file.write_text(text.replace(old, new, 1), encoding="utf-8")
    try:
        built = subprocess.run(["cmake", "--build", "--preset", "release", "--target",
                                "ZrHmiEventLogger", "hmi-server", *TESTS],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if built.returncode:
            return "does not compile"
        for test in TESTS:
            if not run(test):
                return f"caught by {test}"
        return "SURVIVED"
    finally:
        file.write_text(text, encoding="utf-8")


def main():
    bounds = [int(number) for number in sys.argv[1:3]]
    first, last = bounds[0] if bounds else 0, bounds[1] if len(bounds) > 1 else len(MUTATIONS)
    results = []
    for number, (path, old, new) in list(enumerate(MUTATIONS))[first:last]:
        results.append(verdict(path, old, new))
        print(f"{number:2} {path}: {old.strip().splitlines()[0][:60]}: {results[-1]}", flush=True)
    caught = sum(result.startswith("caught") for result in results)
    survived = results.count("SURVIVED")
    print(f"{caught} of {caught + survived} caught")


if __name__ == "__main__":
    main()
