#include <filesystem>
#include <fstream>
#include <random>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "server/config/ConfigurationStore.h"
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

class ConfigurationStoreTest : public testing::Test {
protected:
    ConfigurationStoreTest() {
        fs::create_directory(directory);
        std::ofstream(file)
            << R"({"TIMEOUT": "PT2.5S", "TARGET_SYSTEMS": {"A": {"ENABLED": true}}})";
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
    EXPECT_FALSE(refused.succeeded());
    EXPECT_TRUE(static_cast<bool>(store.read(path("TARGET_SYSTEMS::A::ENABLED"))));
    EXPECT_EQ(written(), before);

    const auto accept = [] { return ResultPair(); };
    store.change(path("NEW::DEEP"), json::value(1), accept);
    store.change(path("TARGET_SYSTEMS::A"), std::nullopt, accept);
    store.change(path("NOT::THERE"), std::nullopt, accept);
    EXPECT_EQ(written(),
              json::parse(R"({"TIMEOUT": "PT2.5S", "TARGET_SYSTEMS": {}, "NEW": {"DEEP": 1}})"));
    EXPECT_EQ(store.get({}), written());
    EXPECT_THROW(store.change(path("TIMEOUT::X"), json::value(1), accept), ConfigurationError);
    EXPECT_THROW(store.change(path("LIMIT_EVENT_COUNT"), json::value("x"), accept),
                 ConfigurationError);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory), fs::directory_iterator()), 1)
        << "no temporary file stays";
    fs::remove_all(directory);
    EXPECT_THROW(store.change(path("A"), json::value(1), accept), std::system_error);
    EXPECT_FALSE(store.get(path("A"))) << "it could not be written";
}

TEST_F(ConfigurationStoreTest, AnEntryThatIsNotDecidedYetHoldsUpNoOther) {
    ConfigurationStore store(file);
    const auto accept = [] { return ResultPair(); };
    store.change(path("TARGET_SYSTEMS::B"), json::value({{"ENABLED", true}}), accept);
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
