#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "proxy/FakeObject.h"
#include "target/proxy/EventCookie.h"

namespace {

constexpr IID eventsId{0x11, 0x22, 0x33, {4, 5, 6, 7, 8, 9, 10, 11}};

/// A connection point that accepts any number of sinks and gives each a cookie of its own.
class FakePoint final : public FakeObject<IConnectionPoint> {
public:
    HRESULT adviseResult = S_OK;
    HRESULT unadviseResult = S_OK;
    std::atomic<DWORD> made = 0;
    std::atomic<DWORD> ended = 0;

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD* cookie) override {
        if (SUCCEEDED(adviseResult))
            *cookie = ++made;
        return adviseResult;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override {
        ++ended;
        return unadviseResult;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
};

class FakeSource final : public FakeObject<IConnectionPointContainer> {
public:
    FakePoint point;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint** found) override {
        point.AddRef();
        *found = &point;
        return S_OK;
    }
};

TEST(EventCookie, endsEachConnectionOnce) {
    FakeSource source;
    FakeUnknown sink;
    {
        ZrAtlCom::EventCookie cookie;
        source.point.adviseResult = E_OUTOFMEMORY;
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), E_OUTOFMEMORY);
        EXPECT_EQ(cookie.advise(&sink, &sink, eventsId), E_NOINTERFACE);
        EXPECT_EQ(cookie.unadvise(), S_OK);
        source.point.adviseResult = S_OK;
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_OK);
        EXPECT_EQ(cookie.advise(&source, &sink, eventsId), S_FALSE);
        source.point.unadviseResult = E_ABORT;
        EXPECT_EQ(cookie.unadvise(), E_ABORT);
    }
    EXPECT_EQ(source.point.made, 1u);
    EXPECT_EQ(source.point.ended, 2u);
    EXPECT_EQ(source.references(), 1);
    EXPECT_EQ(source.point.references(), 1);
}

TEST(EventCookie, parallelCallersEndEveryConnectionExactlyOnce) {
    FakeSource source;
    FakeUnknown sink;
    ZrAtlCom::EventCookie cookie;
    const auto advise = [&] {
        for (int round = 0; round < 1000; ++round) {
            cookie.advise(&source, &sink, eventsId);
            cookie.unadvise();
        }
    };
    std::thread other(advise);
    advise();
    other.join();
    cookie.unadvise();
    EXPECT_EQ(source.point.made, source.point.ended);
    EXPECT_EQ(source.point.references(), 1);
}

}  // namespace
