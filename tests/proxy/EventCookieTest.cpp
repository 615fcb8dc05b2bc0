#include <atomic>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "proxy/FakeObject.h"
#include "target/proxy/EventCookie.h"

namespace {

using ZrAtlCom::EventCookie;

constexpr IID eventsId{0x11, 0x22, 0x33, {4, 5, 6, 7, 8, 9, 10, 11}};

/// A connection point that accepts any number of sinks and gives each a cookie of its own.
class FakePoint final : public FakeObject<IConnectionPoint> {
public:
    std::function<void()> beforeAdvise = [] {};
    HRESULT adviseResult = S_OK;
    HRESULT unadviseResult = S_OK;
    std::atomic<int> made = 0;
    std::atomic<int> ended = 0;
    std::atomic<DWORD> lastCookie = 40;
    std::atomic<DWORD> endedCookie = 0;

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD* cookie) override {
        beforeAdvise();
        if (FAILED(adviseResult))
            return adviseResult;
        ++made;
        *cookie = ++lastCookie;
        return adviseResult;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        ++ended;
        endedCookie = cookie;
        return unadviseResult;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
};

class FakeSource final : public FakeObject<IConnectionPointContainer> {
public:
    FakePoint point;
    HRESULT findResult = S_OK;
    bool handsOut = true;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** found) override {
        if (FAILED(findResult) || !(iid == eventsId))
            return FAILED(findResult) ? findResult : E_INVALIDARG;
        if (handsOut) {
            point.AddRef();
            *found = &point;
        }
        return findResult;
    }
};

TEST(EventCookie, endsEachConnectionOnce) {
    FakeSource source;
    FakeDispatch sink;
    {
        EventCookie cookie;
        EXPECT_EQ(cookie.unadvise(), S_OK);
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_OK);
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_FALSE);
        EXPECT_EQ(source.point.made, 1);

        source.point.unadviseResult = E_ABORT;
        EXPECT_EQ(cookie.unadvise(), E_ABORT);
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_FALSE) << "still advised";
        source.point.unadviseResult = CONNECT_E_NOCONNECTION;
        EXPECT_EQ(cookie.unadvise(), CONNECT_E_NOCONNECTION);
        EXPECT_EQ(source.point.endedCookie, 41u);
        EXPECT_EQ(cookie.unadvise(), S_OK);
        EXPECT_EQ(source.point.ended, 2);
        source.point.unadviseResult = S_OK;
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_OK);
        EXPECT_TRUE(cookie.advised());
    }
    EXPECT_EQ(source.point.endedCookie, 42u);
    EXPECT_EQ(source.references(), 1);
    EXPECT_EQ(source.point.references(), 1);
}

TEST(EventCookie, aStepThatFailsLeavesNothingBehind) {
    const struct {
        const char* step;
        std::function<void(FakeSource&)> breakIt;
        HRESULT expected;
    } steps[] = {
        {"FindConnectionPoint", [](FakeSource& s) { s.findResult = E_ABORT; }, E_ABORT},
        {"no connection point", [](FakeSource& s) { s.handsOut = false; }, E_UNEXPECTED},
        {"Advise", [](FakeSource& s) { s.point.adviseResult = E_OUTOFMEMORY; }, E_OUTOFMEMORY},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.step);
        FakeSource source;
        FakeDispatch sink;
        step.breakIt(source);
        EventCookie cookie;
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), step.expected);
        EXPECT_FALSE(cookie.advised());
        EXPECT_EQ(cookie.unadvise(), S_OK);
        EXPECT_EQ(source.point.ended, 0);
        EXPECT_EQ(source.references(), 1);
        EXPECT_EQ(source.point.references(), 1);
    }
    FakeDispatch noSource;
    EventCookie cookie;
    EXPECT_EQ(cookie.advise(&noSource, &noSource, eventsId), E_NOINTERFACE);
    EXPECT_EQ(cookie.advise(nullptr, &noSource, eventsId), E_NOINTERFACE);
}

TEST(EventCookie, theFasterOfTwoAdvisesStays) {
    FakeSource source;
    FakeDispatch sink;
    EventCookie cookie;
    bool isFirst = true;
    source.point.beforeAdvise = [&] {
        if (std::exchange(isFirst, false)) {
            EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_OK);
        }
    };
    EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_FALSE);
    EXPECT_EQ(source.point.endedCookie, 42u);
    EXPECT_EQ(cookie.unadvise(), S_OK);
    EXPECT_EQ(source.point.endedCookie, 41u);
}

TEST(EventCookie, parallelCallersEndEveryConnectionExactlyOnce) {
    FakeSource source;
    FakeDispatch sink;
    EventCookie cookie;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                cookie.advise(&source, &sink, eventsId);
                cookie.unadvise();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    cookie.unadvise();
    EXPECT_GT(source.point.made, 0);
    EXPECT_EQ(source.point.made, source.point.ended);
    EXPECT_EQ(source.point.references(), 1);
}

}  // namespace
