#include <boost/algorithm/string/replace.hpp>

#include "simulator/SimulatorFixture.h"

namespace {

TEST(PlantTest, IsRefusedWithThePathOfTheFirstError) {
    // Each text stands in place of one part of a plant that is right otherwise.
    const std::string plant =
        "{'runtimes': {'5.10.20.30.1.1': {'eventClasses': {'CLASS': {'name': {'1033': 'Pump'},"
        " 'events': {'7': {'kind': 'alarm', EVENT}, '20': {'kind': 'message'}}}},"
        " 'logged': [{'class': 'CLASS', 'timeRaised': '2024-05-01T00:00:00Z', LOGGED}],"
        " 'timeline': [{'do': 'resume'}, {STEP}], RUNTIME}}, PLANT}";
    const struct {
        const char* part;
        const char* text;
        const char* error;  ///< behind the runtime's path, when it begins with "~"
    } cases[] = {
        {"PLANT", "'localNetId': '5.10'",
         "localNetId: not a net id: six numbers from 0 to 255 with points between"},
        {"PLANT", "'plant': 1", "plant: unknown key"},
        {"PLANT", "'localNetId': '1.1.1.1.1.1'}\n}", "line 2: not JSON: extra data"},
        {"RUNTIME", "'eventClass': {}", "~.eventClass: unknown key"},
        {"RUNTIME", "'repeat': 1", "~.repeat: not true or false"},
        {"RUNTIME", "'sources': {'Tank': {'en': 'Tank'}}",
         "~.sources.Tank.en: its name is not a whole number from 0 to 1048575"},
        {"RUNTIME", "'sources': {'Tank': {'1033': 4}}", "~.sources.Tank.1033: not a text"},
        {"RUNTIME", "'sources': {'Tank': {'1033': 'a', '01033': 'b'}}",
         "~.sources.Tank.01033: given twice"},
        {"EVENT", "'severity': 5",
         "~.eventClasses.CLASS.events.7.severity: not a whole number from 0 to 4"},
        {"EVENT", "'severity': 1.5",
         "~.eventClasses.CLASS.events.7.severity: not a whole number from 0 to 4"},
        {"EVENT", "'details': [{'text': {}}]",
         "~.eventClasses.CLASS.events.7.details[0]: 'key' is missing"},
        {"EVENT", "'causeRemedy': {}", "~.eventClasses.CLASS.events.7.causeRemedy: not an array"},
        {"EVENT", "'confirm': true}, '4294967296': {'kind': 'alarm'",
         "~.eventClasses.CLASS.events.4294967296: its name is not a whole number from 0 to "
         "4294967295"},
        {"EVENT", "'confirm': true}}}, '0000ABCD-1111': {'events': {'1': {'kind': 'alarm'",
         "~.eventClasses.0000ABCD-1111: not a GUID"},
        {"LOGGED", "'event': 9", "~.logged[0].event: not an event of this class"},
        {"LOGGED", "'event': 7, 'severity': 1", "~.logged[0].severity: unknown key"},
        {"LOGGED", "'event': 7, 'timeCleared': '2024-13-01T00:00:00Z'",
         "~.logged[0].timeCleared: not a time such as 2024-05-01T12:30:00.0000000Z"},
        {"LOGGED", "'event': 7, 'timeCleared': '2024-05-01T24:00:00Z'",
         "~.logged[0].timeCleared: not a time such as 2024-05-01T12:30:00.0000000Z"},
        {"LOGGED", "'event': 7, 'timeCleared': '2024-05-01 00:00:00Z'",
         "~.logged[0].timeCleared: not a time such as 2024-05-01T12:30:00.0000000Z"},
        {"LOGGED", "'event': 7, 'arguments': [1, [2]]",
         "~.logged[0].arguments[1]: not a number, a text, true or false"},
        {"LOGGED", "'event': 7, 'source': {'id': -1}",
         "~.logged[0].source.id: not a whole number from 0 to 4294967295"},
        {"STEP", "'after': 1", "~.timeline[1]: 'do' is missing"},
        {"STEP", "'do': 'raise', 'alarm': 'A', 'class': 'pump'", "~.timeline[1].class: not a GUID"},
        {"STEP",
         "'do': 'raise', 'alarm': 'A', 'class': '{00000000-1111-2222-3333-444455556666}',"
         " 'event': 7",
         "~.timeline[1].class: not a class of this runtime"},
        {"STEP", "'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 20",
         "~.timeline[1].event: a message, not an alarm"},
        {"STEP", "'do': 'message', 'class': 'CLASS', 'event': 7",
         "~.timeline[1].event: an alarm, not a message"},
        {"STEP", "'do': 'raise', 'alarm': '', 'class': 'CLASS', 'event': 7",
         "~.timeline[1].alarm: an empty name"},
        {"STEP", "'do': 'message', 'class': 'CLASS', 'event': 20, 'count': 0",
         "~.timeline[1].count: not a whole number from 1 to 1000000"},
        {"STEP", "'do': 'fail', 'call': 'Fly', 'hresult': '0x80004005'",
         "~.timeline[1].call: not an operation"},
        {"STEP", "'do': 'fail', 'call': '*', 'hresult': '0x8000400'",
         "~.timeline[1].hresult: not an HRESULT: '0x' and eight hexadecimal digits"},
        {"STEP", "'do': 'refuse', 'hresult': '0x00000000'", "~.timeline[1].hresult: not a failure"},
        {"STEP", "'do': 'drop', 'call': 'Connect'", "~.timeline[1].call: unknown key"},
        {"STEP", "'do': 'drop', 'after': -1", "~.timeline[1].after: out of range"},
        {"RUNTIME", "'repeat': true", "~.repeat: a timeline that takes no time cannot be repeated"},
        {"PLANT", "'localNetId': null", nullptr},
    };
    const std::pair<const char*, const char*> defaults[] = {{"EVENT", "'confirm': true"},
                                                            {"LOGGED", "'event': 7"},
                                                            {"STEP", "'do': 'drop'"},
                                                            {"RUNTIME", "'repeat': false"},
                                                            {"PLANT", "'localNetId': null"}};
    for (const auto& [part, text, error] : cases) {
        std::string changed = boost::replace_first_copy(plant, part, text);
        for (const auto& [other, usual] : defaults)
            boost::replace_first(changed, other, usual);
        const auto answer = loadPlant(withQuotes(changed));
        EXPECT_EQ(answer.result, error ? 400 : 200) << answer.body;
        if (error) {
            const auto expected =
                boost::replace_all_copy(withQuotes(error), "~", "runtimes.5.10.20.30.1.1");
            EXPECT_EQ(answer.body.at("error").as_string(), expected);
        }
    }
    EXPECT_EQ(status(fillerNetId).result, 200);
    EXPECT_EQ(loadPlant("{\"runtimes\": {\"5.10\": {}}}").result, 400);
    EXPECT_EQ(status(fillerNetId).result, 200);  // a refused plant changes nothing
    ZrSimulatorShutdown();
    EXPECT_EQ(status(fillerNetId).result, 404);
}

}  // namespace
