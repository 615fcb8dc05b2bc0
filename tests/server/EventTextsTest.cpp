#include <atomic>
#include <condition_variable>
#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "server/texts/EventTextService.h"

using namespace std::chrono_literals;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::Message;

namespace hmi {

namespace {

EventRecordPtr event(const std::string& target, int number, int seconds = 1) {
    Message made;
    made.set_time_raised(ZrHmiSrv::Timestamp(seconds * 1'000'000'000LL));
    made.parameters().insert("targetName", target.c_str());
    made.parameters().insert("number", number);
    return std::make_shared<const EventRecord>(EventContent{made, {}}, 1);
}

/// An extension whose texts tell how often it was asked, and which waits while it is told to.
class EventTextsTest : public testing::Test, public IChangeSink {
protected:
    ~EventTextsTest() override {
        open();
        lanes.stop();
        lanes.join();
    }

    std::optional<EventTexts> localize(const EventRecord& asked, const std::string& locale) {
        Lock lock(mutex);
        const int number = ++calls;
        while (closed && asked.target == "Slow")
            changed.wait(lock);
        if (locale == "xx")
            return EventTexts{ErrorValue::request_failed, {}, {}};
        return EventTexts{ErrorValue::success, ZrHmiSrv::Text(std::to_string(number)), {}};
    }

    void post(Change change) noexcept override {
        EXPECT_EQ(change.type, ChangeType::texts);
        Lock lock(mutex);
        ++news;
        changed.notify_all();
    }

    void open() {
        Lock lock(mutex);
        closed = false;
        changed.notify_all();
    }
    void awaitNews() {
        Lock lock(mutex);
        while (news == 0)
            changed.wait(lock);
    }

    std::string text(const EventRecordPtr& of, std::chrono::milliseconds wait = 1min,
                     const std::string& locale = "en") {
        const TextsPtr texts = service.get({&of, 1}, locale, wait).at(0);
        return !texts                                 ? "pending"
               : texts->result == ErrorValue::success ? std::string(texts->text.view())
                                                      : "failed";
    }

    Mutex mutex;
    std::condition_variable_any changed;
    bool closed = false;
    int calls = 0;
    int news = 0;
    WorkerLanes lanes;
    EventTextService service{[this](const EventRecord& asked, const std::string& locale) {
                                 return localize(asked, locale);
                             },
                             lanes, *this};
};

TEST_F(EventTextsTest, AreKeptUntilTheirTargetSystemIsImportedOrReplaced) {
    EXPECT_EQ(text(event("A", 1)), "1");
    EXPECT_EQ(text(event("A", 1, 2)), "1") << "the same event at another time";
    EXPECT_EQ(text(event("A", 2)), "2");
    EXPECT_EQ(text(event("B", 1)), "3");
    EXPECT_EQ(text(event("A", 1), 1min, "de"), "4");
    EXPECT_EQ(text(event("A", 3), 1min, "xx"), "failed");
    EXPECT_EQ(text(event("A", 3), 1min, "xx"), "failed");
    EXPECT_EQ(calls, 5) << "a failure is not tried again at once";

    const auto entry = std::make_shared<LogEntry>();
    entry->message.set_name("LOGGED_EVENTS_IMPORTED");
    entry->message.parameters().insert("0", "A");
    EXPECT_TRUE(service.post({.type = ChangeType::log, .entry = entry}));
    EXPECT_EQ(text(event("A", 1)), "6");
    EXPECT_EQ(text(event("B", 1)), "3");
    const auto replaced = std::make_shared<Replacement>(Replacement{"B", {}});
    service.post({.type = ChangeType::reset, .replacement = replaced});
    EXPECT_EQ(text(event("B", 1)), "7");
    EXPECT_EQ(text(event("A", 1)), "6");
    EXPECT_EQ(news, 0) << "nobody has gone without";
    PrometheusText figures;
    service.write(figures);
    for (const char* line : {"hmi_texts_known 5", "hmi_texts_pending 0",
                             "hmi_texts_read_total{cache=\"hit\"} 4",
                             "hmi_texts_read_total{cache=\"miss\"} 7",
                             "hmi_texts_fetched_total{outcome=\"failed\"} 1"})
        EXPECT_THAT(figures.text(), testing::HasSubstr(line));
}

TEST_F(EventTextsTest, ThatComeLateAreToldOnce) {
    closed = true;
    std::vector<EventRecordPtr> events;
    for (int number = 0; number < 20; ++number)
        events.push_back(event("Slow", number));
    EXPECT_THAT(service.get(events, "en", 0ms), testing::Each(testing::IsNull()));
    EXPECT_NE(text(event("A", 1)), "pending") << "another target system is not slow";
    open();
    awaitNews();
    EXPECT_THAT(service.get(events, "en", 1min), testing::Each(testing::NotNull()));
    EXPECT_EQ(calls, 21);
    EXPECT_LE(news, 3) << "not for each of them";
}

TEST_F(EventTextsTest, AskedForBeforeAnImportAreNotTakenForThoseAfterIt) {
    closed = true;
    EXPECT_EQ(text(event("Slow", 1), 0ms), "pending");
    const auto replaced = std::make_shared<Replacement>(Replacement{"Slow", {}});
    service.post({.type = ChangeType::reset, .replacement = replaced});
    open();
    awaitNews();
    EXPECT_EQ(text(event("Slow", 1)), "2");
}

TEST_F(EventTextsTest, OneSearchAsksForSomeAndStoppingEndsItsWait) {
    std::vector<EventRecordPtr> events;
    for (int number = 0; number < 1500; ++number)
        events.push_back(event("A", number));
    const auto pending = [&] {
        const auto texts = service.get(events, "en", 1min);
        return std::count(texts.begin(), texts.end(), nullptr);
    };
    EXPECT_EQ(pending(), 500);
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(calls, 1500);
    closed = true;
    std::thread stopper([&] { service.stop(); });
    EXPECT_EQ(text(event("Slow", 1)), "pending");
    stopper.join();
}

}  // namespace

}  // namespace hmi
