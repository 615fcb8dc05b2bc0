#include "robustness/RandomActions.h"

#include <iterator>
#include <set>
#include <utility>

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include "support/Simulation.h"

namespace json = boost::json;

namespace bridge_test {

namespace {

template <class Choices>
auto oneOf(std::mt19937& random, const Choices& choices) {
    return choices[random() % std::size(choices)];
}

/// Past, and the same for all of them; or none, which is now.
json::value someTime(std::mt19937& random) {
    static constexpr const char* times[] = {"", "", "2025-01-01T00:00:01Z", "2025-01-01T00:00:02Z"};
    const std::string time = oneOf(random, times);
    return time.empty() ? json::value() : json::value(time);
}

void setTime(json::object& action, const char* key, const json::value& time) {
    if (!time.is_null())
        action[key] = time;
}

json::object happening(std::mt19937& random, const char* what, int event) {
    static constexpr const char* contents[] = {"1", "2"};
    json::object action{
        {"do", what}, {"class", eventClass}, {"event", event}, {"json", oneOf(random, contents)}};
    setTime(action, "timeRaised", someTime(random));
    return action;
}

json::object aboutAlarm(std::mt19937& random, const char* what) {
    static constexpr const char* names[] = {"A", "B", "C"};
    return {{"do", what}, {"alarm", oneOf(random, names)}};
}

json::object raise(std::mt19937& random) {
    json::object action = happening(random, "raise", 1 + static_cast<int>(random() % 2));
    const json::object named = aboutAlarm(random, "raise");
    action["alarm"] = named.at("alarm");
    action["source"] = json::object{{"name", named.at("alarm")}};
    return action;
}

json::object clear(std::mt19937& random) {
    json::object action = aboutAlarm(random, "clear");
    setTime(action, "timeCleared", someTime(random));
    return action;
}

json::object pause(std::mt19937& random) {
    static constexpr const char* calls[] = {"GetLoggedEvents", "GetActiveAlarms", "Severity"};
    return {{"do", "pause"}, {"call", oneOf(random, calls)}};
}

json::object message(std::mt19937& random) {
    static constexpr const char* sources[] = {"M", "N"};
    json::object action = happening(random, "message", 3);
    action["source"] = json::object{{"name", oneOf(random, sources)}};
    action["arguments"] = json::array(random() % 3, 1);
    action["count"] = 1 + random() % 2;
    return action;
}

json::object databaseChanged(std::mt19937& random) {
    return {{"do", "databaseChanged"}, {"reason", random() % 4}};
}

struct Choice {
    unsigned weight;
    const char* what;
    json::object (*make)(std::mt19937& random) = nullptr;  ///< null: there is no more to it
};

json::object randomAction(std::mt19937& random) {
    static constexpr Choice choices[] = {
        {30, "raise", raise},
        {18, "clear", clear},
        {14, "message", message},
        {5, "confirm", [](auto& any) { return aboutAlarm(any, "confirm"); }},
        {5, "Confirm", [](auto& any) { return aboutAlarm(any, "Confirm"); }},
        {2, "databaseChanged", databaseChanged},
        {2, "drop"},
        {6, "pause", pause},
        {6, "resume"},
        {7, "hold"},
        {5, "release"},
        {9, "Replace"},
        {3, "Reset"},
        {1, "ForceReconnect"},
        {4, "AwaitImport"},
        {3, "Settle"}};
    unsigned all = 0;
    for (const Choice& choice : choices)
        all += choice.weight;
    auto drawn = random() % all;
    const Choice* choice = choices;
    for (; drawn >= choice->weight; ++choice)
        drawn -= choice->weight;
    return choice->make ? choice->make(random) : json::object{{"do", choice->what}};
}

/// What a logger cannot tell apart, nobody can: what is raised or sent at a time of its own, again.
std::string identityOf(const json::object& action, bool numbered) {
    const json::value* const time = action.if_contains("timeRaised");
    const bool isAlarm = action.contains("alarm");
    if (!time || (isAlarm && numbered))
        return {};
    const json::value arguments = isAlarm ? json::value() : action.at("arguments");
    return json::serialize(json::array{*time, action.at("event"), action.at("source"), arguments});
}

}  // namespace

RandomActions randomActions(std::mt19937& random, bool numbered) {
    std::set<std::string> identities;
    RandomActions actions(3 + random() % 14);
    for (json::object& action : actions) {
        action = randomAction(random);
        // Without a number, another event is another alarm.
        if (!numbered && action.at("do") == "raise")
            action["event"] = action.at("alarm") == "B" ? 2 : 1;
        const std::string identity = identityOf(action, numbered);
        if (!identity.empty() && !identities.insert(identity).second)
            action.erase("timeRaised");
    }
    return actions;
}

std::string toText(const RandomActions& actions) {
    std::string text;
    for (const json::object& action : actions)
        text += (text.empty() ? "[" : ",\n ") + json::serialize(action);
    return text + "]";
}

}  // namespace bridge_test
