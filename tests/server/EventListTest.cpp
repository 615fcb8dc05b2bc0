/// /api/events of many events, as the server answers it.
#include <gmock/gmock.h>

#include "server/TestHeap.h"
#include "server/api/EventsResource.h"
#include "server/events/ChangeFeed.h"
#include "server/http/Conditional.h"

namespace hmi {

namespace {

class EventListTest : public testing::Test {
protected:
    EventListTest() { resource.addRoutes(router); }
    ~EventListTest() override {
        lanes.stop();
        lanes.join();
    }

    void fill(int count) {
        for (int number = 1; number <= count; ++number) {
            ZrHmiSrv::Alarm alarm;
            alarm.set_id(number);
            alarm.set_time_raised(ZrHmiSrv::Timestamp(number * 1'000'000LL));
            alarm.payload().insert("targetName", number % 2 == 0 ? "Filler" : "Packer");
            alarm.payload().insert("number", number);
            book.raise(std::move(alarm));
        }
    }

    ChangeFeed feed;
    EventBook book{feed};
    TargetBook targets;
    ListenerRegistry listeners;
    ExtensionCalls extension{listeners, ZrHmiSrv::Context("test")};
    WorkerLanes lanes;
    EventTextService texts{[](const auto&, const auto&) { return std::nullopt; }, lanes, feed};
    EventsResource resource{book, targets, extension, texts};
    Router router;
};

TEST_F(EventListTest, FindsWhatAnEventSaysNow) {
    fill(3);
    const auto found = [&](const std::string& text) {
        Request request;
        request.target = Target::parse("/api/events?text=" + text);
        const std::string& body = router.find(request).handler(request).body;
        return body.substr(0, body.find(','));
    };
    EXPECT_EQ(found("PACK"), "{\"total\":2");
    ZrHmiSrv::Alarm alarm;
    alarm.set_id(1);
    alarm.set_name("LEVEL");
    alarm.payload().insert("targetName", "Stra\xc3\x9f" "e");
    book.update(alarm);
    EXPECT_EQ(found("pack"), "{\"total\":1");
    EXPECT_EQ(found("STRASSE"), "{\"total\":1");
    EXPECT_EQ(found("level"), "{\"total\":1");
    EXPECT_EQ(found("levels"), "{\"total\":0") << "no text begins where another ends";
    EXPECT_EQ(found("filler"), "{\"total\":1");
}

TEST_F(EventListTest, TakesLittleMemoryHoweverLongItIs) {
    constexpr std::ptrdiff_t most = 16 << 20;
    fill(100'000);
    for (const char* query : {"", "&order=priority&gaps=1&lastKnown=1", "&text=filler"}) {
        Request request;
        request.target = Target::parse(std::string("/api/events?limit=100000") + query);
        request.acceptsGzip = true;
        const std::ptrdiff_t before = mostHeldBytes = heldBytes;
        Response response = router.find(request).handler(request);
        fit(request, response);
        ASSERT_TRUE(response.parts);
        std::size_t size = 0;
        for (std::string part = response.parts(); !part.empty(); part = response.parts())
            size += part.size();
        EXPECT_GT(size, 1U << 18);
        EXPECT_LT(mostHeldBytes - before, most) << query;
    }
}

}  // namespace

}  // namespace hmi
