#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "server/StartError.h"
#include "server/config/ConfigurationStore.h"
#include "server/config/FileCalls.h"
#include "server/config/ConfigurationWatch.h"
#include "server/json/ValueJson.h"

namespace fs = std::filesystem;
namespace json = boost::json;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace hmi {

namespace {

ConfigurationPath path(std::string_view text) {
    return ConfigurationPath::parse(text).value();
}

/// A file that is gone at the end.
struct TemporaryFile {
    explicit TemporaryFile(const std::string& name)
        : path(fs::temp_directory_path() / (name + std::to_string(std::random_device()()))) {}
    ~TemporaryFile() { fs::remove(path); }
    void write(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }
    const fs::path path;
};

class ConfigurationStoreTest : public testing::Test {
protected:
    ConfigurationStoreTest() {
        fs::create_directory(directory);
        std::ofstream(file) << R"({"TIMEOUT": "PT2.5S", "LIMIT_EVENT_COUNT": 2.9, "TARGET_SYSTEMS":
                                   {"A": {"ADDRESS": "local", "ENABLED": true}}})";
    }
    ~ConfigurationStoreTest() override { fs::remove_all(directory); }

    json::value written() const {
        std::ifstream stream(file);
        return json::parse(std::string(std::istreambuf_iterator<char>(stream), {}));
    }

    const fs::path directory = fs::temp_directory_path() /
                               ("configuration-test-" + std::to_string(std::random_device()()));
    const fs::path file = directory / "config.json";
};

TEST_F(ConfigurationStoreTest, ReadsAsTheExtensionExpects) {
    const ConfigurationStore store(file);
    EXPECT_EQ(store.read({}).type(), ValueType::map);
    EXPECT_EQ(store.read(path("TIMEOUT")).type(), ValueType::timespan);
    EXPECT_EQ(store.read(path("TIMEOUT")).get_timespan().milliseconds(), 2500);
    EXPECT_TRUE(static_cast<bool>(store.read(path("TARGET_SYSTEMS::A::ENABLED"))));
    EXPECT_FALSE(store.read(path("TARGET_SYSTEMS::B")).isset());
    EXPECT_FALSE(store.read(path("TIMEOUT::X")).isset());
    std::ofstream(file) << R"({"TIMEOUT": "PT1S", "TARGET_SYSTEMS": {}})";
    EXPECT_EQ(static_cast<int>(ConfigurationStore(file).read(path("LIMIT_EVENT_COUNT"))), 1000);
    std::ofstream(file) << "{}";
    EXPECT_FALSE(ConfigurationStore(file).read({}).isset()) << "empty is no configuration";
}

TEST_F(ConfigurationStoreTest, IsWrittenWhenAcceptedAndRolledBackWhenRefused) {
    ConfigurationStore store(file);
    const json::value before = written();
    const auto refused = store.change(path("TARGET_SYSTEMS::A::ENABLED"), json::value(false), [&] {
        EXPECT_FALSE(static_cast<bool>(store.read(path("TARGET_SYSTEMS::A::ENABLED"))));
        EXPECT_EQ(written(), before) << "not before it is accepted";
        return ResultPair(ErrorValue::invalid_configuration);
    });
    EXPECT_FALSE(refused.answer.succeeded());
    EXPECT_TRUE(static_cast<bool>(store.read(path("TARGET_SYSTEMS::A::ENABLED"))));
    EXPECT_EQ(written(), before);

    const auto accept = [] { return ResultPair(); };
    store.change(path("NEW::DEEP"), json::value(1), accept);
    store.change(path("TARGET_SYSTEMS::A"), std::nullopt, accept);
    store.change(path("NOT::THERE"), std::nullopt, accept);
    EXPECT_EQ(written(), json::parse(R"({"TIMEOUT": "PT2.5S", "LIMIT_EVENT_COUNT": 2.9,
                                         "TARGET_SYSTEMS": {}, "NEW": {"DEEP": 1}})"));
    EXPECT_EQ(store.get({}), written());
    EXPECT_EQ(std::distance(fs::directory_iterator(directory), fs::directory_iterator()), 1)
        << "no temporary file stays";
}

/// Whatever is accepted can be read at the next start; whatever cannot is refused before the
/// extension hears of it.
TEST_F(ConfigurationStoreTest, AcceptsOnlyWhatItCouldStartWithAgain) {
    ConfigurationStore store(file);
    const json::value before = written();
    const auto deep = [](int levels) {
        json::value value = 1;
        for (; levels > 0; --levels)
            value = json::array{value};
        return value;
    };
    std::string longPath = "A";
    for (int i = 0; i < 5000; ++i)
        longPath += "::A";
    const std::pair<std::string, std::optional<json::value>> cases[] = {
        {"TIMEOUT::X", json::value(1)},
        {"TIMEOUT", json::value("PT0S")},
        {"TIMEOUT", std::nullopt},
        {"LIMIT_EVENT_COUNT", json::value("x")},
        {"LIMIT_EVENT_COUNT", json::value(-1)},
        {"LIMIT_EVENT_COUNTS", json::value(1)},
        {"PRELOAD_TRANSLATIONS", json::value(1)},
        {"TARGET_SYSTEMS::A::ADDRESS", json::value(5)},
        {"TARGET_SYSTEMS::A::ENABLED", json::value("yes")},
        {"NUMBER", json::value(std::numeric_limits<double>::infinity())},
        {"NEW::A::B", deep(30)},
        {longPath, json::value(1)},
        {"NEW", json::value(std::string(std::size_t{64} << 20, 'x'))},
    };
    for (const auto& [name, value] : cases) {
        EXPECT_THROW(store.change(path(name), value, []() -> ResultPair { throw "asked"; }),
                     ConfigurationError)
            << name.substr(0, 40);
    }
    EXPECT_EQ(written(), before);
    EXPECT_EQ(store.get({}), before);
    EXPECT_TRUE(store.change(path("NEW::A"), deep(30), [] { return ResultPair(); }).answer.succeeded());
    EXPECT_NO_THROW(ConfigurationStore{file}) << "as deep as a file may be";
    const json::value half(std::string(std::size_t{33} << 20, 'x'));
    store.change(path("HALF"), half, [&] {
        EXPECT_THROW(store.change(path("OTHER_HALF"), half, [] { return ResultPair(); }),
                     ConfigurationError)
            << "though neither is in force yet";
        return ResultPair();
    });
    EXPECT_NO_THROW(ConfigurationStore{file});
    // An entry without its fields is the extension's to refuse; should it not, the server does.
    for (const json::value& entry : {json::value(5), json::value{{"ADDRESS", "local"}}}) {
        EXPECT_FALSE(store.change(path("TARGET_SYSTEMS::A"), entry, [] { return ResultPair(); })
                         .answer.succeeded());
        EXPECT_EQ(store.get(path("TARGET_SYSTEMS::A::ENABLED")), json::value(true));
    }
}

#ifndef _WIN32
TEST_F(ConfigurationStoreTest, ReplacesItsFileWithoutHarmToOthers) {
    const auto change = [&](ConfigurationStore& store, int number) {
        return store.change(path("NEW"), json::value(number), [] { return ResultPair(); });
    };
    const fs::path bystander = directory / "config.json.new";
    std::ofstream(bystander) << "somebody's";
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    // Of a server that was killed only its own file goes.
    std::ofstream(directory / ".config.json.1.new") << "{";
    const WritableFile busy = WritableFile::createBeside(file);  // another one writes it now
    std::ofstream(directory / ".config.json.mine.new") << "{}";
    fs::create_symlink("config.json.new", directory / ".config.json.2.new");
    { const ConfigurationStore first(file); }
    EXPECT_FALSE(fs::exists(directory / ".config.json.1.new"));
    for (const fs::path& kept :
         {busy.path(), directory / ".config.json.mine.new", directory / ".config.json.2.new"}) {
        EXPECT_TRUE(fs::remove(kept)) << kept;
    }

    const fs::path link = directory / "link.json";
    fs::create_symlink("config.json", link);
    {
        ConfigurationStore store(link);
        EXPECT_EQ(change(store, 1).notKept, "");
        EXPECT_EQ(change(store, 2).notKept, "");
    }
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(written().at("NEW"), 2);
    EXPECT_EQ(fs::file_size(bystander), 10U);
    EXPECT_EQ(fs::status(file).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    ConfigurationStore store(file);
    // What happens to the file between the check before a change and the end of it.
    const auto moved = store.change(path("NEW"), json::value(3), [&] {
        fs::remove(file);
        fs::create_directories(file / "in the way");
        return ResultPair();
    });
    EXPECT_THAT(moved.notKept, testing::StartsWith("in force, but not kept: " + file.string()));
    EXPECT_TRUE(moved.answer.succeeded());
    EXPECT_EQ(store.get(path("NEW")), json::value(3));
    EXPECT_EQ(std::distance(fs::directory_iterator(directory), fs::directory_iterator()), 3);
    EXPECT_THROW(change(store, 4), ConfigurationConflict);
    EXPECT_EQ(store.get(path("NEW")), json::value(3));

    fs::remove_all(file);
    std::ofstream(file) << "{}";
    EXPECT_THROW(change(store, 4), ConfigurationConflict) << "edited by hand";
    EXPECT_EQ(fs::file_size(file), 2U) << "and not overwritten";
}

TEST_F(ConfigurationStoreTest, AFullDiskLeavesAFileThatCanOnlyBeWrittenOver) {
    const fs::path alone = directory / std::string(255, 'c');  // there can be no longer name
    fs::copy_file(file, alone);
    ConfigurationStore store(alone);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const auto former = std::signal(SIGXFSZ, SIG_IGN);
    const auto change = [&](const std::string& value, rlim_t room) {
        const auto done = store.change(path("NEW"), json::value(value), [&] {
            const rlimit limited{room, usual.rlim_max};
            setrlimit(RLIMIT_FSIZE, &limited);
            return ResultPair();
        });
        setrlimit(RLIMIT_FSIZE, &usual);
        return done.notKept;
    };
    EXPECT_EQ(change("small", usual.rlim_cur), "");
    EXPECT_THAT(change(std::string(20'000, 'x'), 4096), testing::StartsWith("in force, but not"));
    EXPECT_EQ(ConfigurationStore(alone).get(path("NEW")), json::value("small"));
    EXPECT_EQ(change("other", usual.rlim_cur), "");
    EXPECT_EQ(ConfigurationStore(alone).get(path("NEW")), json::value("other"));
    std::signal(SIGXFSZ, former);
}
#endif

/// Every one of them is told in one line with file, line and field. "-": the server starts, and
/// says so all the same.
TEST(ConfigurationCheckTest, FindsWhatNobodyMeant) {
    const std::string good = R"("TIMEOUT": "PT5S", "LIMIT_EVENT_COUNT": 10)";
    const std::string entry = R"("ADDRESS": "local", "ENABLED": true)";
    const auto root = [&](const std::string& more) { return "{" + good + ",\n" + more + "}"; };
    const auto targets = [&](const std::string& more) {
        return root("\"TARGET_SYSTEMS\": {\n" + more + "}");
    };
    const auto target = [&](const std::string& fields) { return targets("\"A\": {\n" + fields + "}"); };
    const std::string aTarget = "\"TARGET_SYSTEMS\": {\"A\": {" + entry + "}}";
    const std::string limited = "\"LIMIT_EVENT_COUNT\": 10,\n" + aTarget + "}";
    const std::pair<std::string, std::string> cases[] = {
        {"", "line 1, column 1"},
        {"[]", "line 1: not an object"},
        {"{\"TIMEOUT\":\n  \"PT5S\"", "line 2, column"},
        {"{\"TIMEOUT\": \"PT5S\"}\n}", "line 2, column 1"},
        {"{'TIMEOUT': 5}", "line 1, column"},
        {"{\"TIMEOUT\": \"\xFF\"}", "line 1, column"},
        {root("\"A\": 1e400"), "line 2: A: a number is too large"},
        {root("\"A\": [1,\n -1e999]"), "line 3: A: a number is too large"},
        {root("\"A\": " + std::string(40, '[')), "line 2, column"},
        {root("\"TIMEOUT\": \"PT1S\""), "line 2: TIMEOUT: is there twice"},
        {targets("\"A\": {" + entry + "},\n\"A\": {" + entry + "}"),
         "line 4: TARGET_SYSTEMS.A: is there twice"},
        {"{\n" + limited, "line 1: TIMEOUT: missing"},
        {"{\n\"TIMEOUT\": \"PT0S\", " + limited, "line 2: TIMEOUT: not between"},
        {"{\n\"TIMEOUT\": \"P25D\", " + limited, "line 2: TIMEOUT: not between"},
        {"{\n\"TIMEOUT\": \"5s\", " + limited, "line 2: TIMEOUT: not a duration"},
        {"{\n\"TIMEOUT\": 5000, " + limited, "line 2: TIMEOUT: not a duration"},
        {"{\n\"TIMEOUTS\": 5, \"TIMEOUT\": \"PT5S\", " + limited, "line 2: TIMEOUTS: unknown"},
        {"{\n\"timeout\": \"PT5S\", " + limited, "line 2: timeout: unknown; TIMEOUT is meant"},
        {"{\"TIMEOUT\": \"PT5S\", " + aTarget + "}",
         "-line 1: LIMIT_EVENT_COUNT: missing: 1000 is used"},
        {"{\"TIMEOUT\": \"PT5S\",\n\"LIMIT_EVENT_COUNT\": -1, " + aTarget + "}",
         "line 2: LIMIT_EVENT_COUNT: less than 0"},
        {"{\"TIMEOUT\": \"PT5S\",\n\"LIMIT_EVENT_COUNT\": \"9\", " + aTarget + "}",
         "line 2: LIMIT_EVENT_COUNT: not a number"},
        {"{\"TIMEOUT\": \"PT5S\",\n\"LIMIT_EVENT_COUNT\": 1e10, " + aTarget + "}",
         "-line 2: LIMIT_EVENT_COUNT: more than 2147483647"},
        {root("\"PRELOAD_TRANSLATIONS\": \"yes\", " + aTarget),
         "line 2: PRELOAD_TRANSLATIONS: not a boolean"},
        {root("\"PRELOAD_TRANSLATIONS\": 1, " + aTarget), "line 2: PRELOAD_TRANSLATIONS: not a"},
        {root("\"PRELOAD_TRANSLATION\": true, " + aTarget), "line 2: PRELOAD_TRANSLATION: unknown"},
        {root("\"COMMENT\": 1, " + aTarget), "-line 2: COMMENT: nothing reads this"},
        {root("\"TARGET_SYSTEM\": {}"), "line 2: TARGET_SYSTEM: unknown; TARGET_SYSTEMS is meant"},
        {"{" + good + "}", "-line 1: TARGET_SYSTEMS: missing"},
        {root("\"TARGET_SYSTEMS\": []"), "line 2: TARGET_SYSTEMS: not an object"},
        {targets("\"A\": 5"), "line 3: TARGET_SYSTEMS.A: not an object"},
        {targets("\"\": {" + entry + "}"), "line 3: TARGET_SYSTEMS.: a name is not empty"},
        {targets("\"A::B\": {" + entry + "}"), "line 3: TARGET_SYSTEMS.A::B: a name is not"},
        {targets("\"" + std::string(256, 'A') + "\": {" + entry + "}"), ": a name has at most 255"},
        {targets("\"A\\u0007\": {" + entry + "}"), ": a name has at most 255"},
        {target("\"ENABLED\": true"), "line 3: TARGET_SYSTEMS.A.ADDRESS: missing"},
        {target("\"ADDRESS\": \"local\""), "line 3: TARGET_SYSTEMS.A.ENABLED: missing"},
        {target("\"ADDRESS\": 5, \"ENABLED\": true"), "line 4: TARGET_SYSTEMS.A.ADDRESS: not a string"},
        {target("\"ADDRESS\": \"local\",\n\"ENABLED\": \"true\""),
         "line 5: TARGET_SYSTEMS.A.ENABLED: not a boolean"},
        {target("\"ADRESS\": \"local\", \"ENABLED\": true"), "line 4: TARGET_SYSTEMS.A.ADRESS: unknown"},
        {target(entry + ", \"enabled\": true"), "line 4: TARGET_SYSTEMS.A.enabled: unknown"},
        {target(entry + ", \"NOTE\": \"x\""), "-line 4: TARGET_SYSTEMS.A.NOTE: nothing reads this"},
        {target("\"ADDRESS\": \"192.168.0.300.1.1\", \"ENABLED\": true"),
         "-line 4: TARGET_SYSTEMS.A.ADDRESS: neither up to six numbers"},
        {target("\"ADDRESS\": \"filler\", \"ENABLED\": true"),
         "-line 4: TARGET_SYSTEMS.A.ADDRESS: neither"},
        {targets("\"A\": {" + entry + "},\n\"B\": {\"ADDRESS\": \"\", \"ENABLED\": false}"),
         "-line 4: TARGET_SYSTEMS.B.ADDRESS: the same as of TARGET_SYSTEMS.A"},
    };
    static_assert(std::size(cases) >= 40);
    const TemporaryFile file("configuration-check");
    for (const auto& [text, expected] : cases) {
        const bool starts = expected.starts_with('-');
        file.write(text);
        testing::internal::CaptureStderr();
        std::string told;
        try {
            ConfigurationStore store(file.path);
        } catch (const StartError& error) {
            told = error.what();
        }
        const std::string logged = testing::internal::GetCapturedStderr();
        EXPECT_EQ(told.empty(), starts) << text;
        const std::string& line = starts ? logged : told;
        EXPECT_THAT(line, testing::HasSubstr(file.path.string() + ": ")) << text;
        EXPECT_THAT(line, testing::HasSubstr(expected.substr(starts ? 1 : 0))) << text;
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), starts ? 1 : 0) << line;
    }
    file.write("{" + good + ", " + aTarget + "}");
    testing::internal::CaptureStderr();
    EXPECT_NO_THROW(ConfigurationStore{file.path});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ConfigurationStoreTest, AnEntryThatIsNotDecidedYetHoldsUpNoOther) {
    ConfigurationStore store(file);
    const auto accept = [] { return ResultPair(); };
    store.change(path("TARGET_SYSTEMS::B"),
                 json::value({{"ADDRESS", "1"}, {"ENABLED", true}}), accept);
    const json::value before = written();
    store.change(path("TARGET_SYSTEMS::A"), json::value(5), [&] {
        store.change(path("TARGET_SYSTEMS::B"), std::nullopt, [&] {
            EXPECT_EQ(static_cast<int>(store.read(path("TARGET_SYSTEMS::A"))), 5);
            EXPECT_FALSE(store.read(path("TARGET_SYSTEMS::B")).isset());
            return ResultPair(ErrorValue::operation_failed);
        });
        store.change(path("LIMIT_EVENT_COUNT"), json::value(7), accept);
        EXPECT_EQ(static_cast<int>(store.read(path("TARGET_SYSTEMS::A"))), 5);
        EXPECT_TRUE(written().at("TARGET_SYSTEMS").at("A").is_object()) << "nobody has accepted it";
        return ResultPair(ErrorValue::invalid_configuration);
    });
    json::value expected = before;
    expected.as_object()["LIMIT_EVENT_COUNT"] = 7;
    EXPECT_EQ(written(), expected);
    EXPECT_EQ(store.get({}), expected);
    std::ifstream stream(file);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    EXPECT_LT(text.find("\"A\""), text.find("\"B\"")) << "target systems keep their order";
}

TEST(ConfigurationWatchTest, TellsChangesBelowAWatchedPathAsASet) {
    const Value settings = fromJson(json::parse(
        R"([{"flags": 48, "paths": ["TARGETS::*"]}, {"flags": 16, "paths": ["LIMIT"]}])"));
    const struct {
        const char* changed;
        bool deleted;
        const char* told;  // "+": set, "-": deleted, then the path
    } cases[] = {
        {"TARGETS::A", false, "+TARGETS::A"},
        {"TARGETS::A", true, "-TARGETS::A"},
        {"TARGETS::A::X", false, "+TARGETS::A"},
        {"TARGETS::A::X::Y", true, "+TARGETS::A"},
        {"TARGETS", false, ""},
        {"OTHER::A", false, ""},
        {"LIMIT", false, "+LIMIT"},
        {"LIMIT", true, ""},
    };
    using Event = ConfigurationWatch::Event;
    for (const auto& [changed, deleted, expected] : cases) {
        const auto match = ConfigurationWatch(settings).match(path(changed), deleted);
        std::string told;
        if (match)
            told = (match->event == Event::valueSet ? "+" : "-") + match->path.text();
        EXPECT_EQ(told, expected) << changed << deleted;
    }
    EXPECT_FALSE(ConfigurationWatch(Value("nonsense")).match(path("A"), false));
}

}  // namespace

}  // namespace hmi
