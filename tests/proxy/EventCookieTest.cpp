#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include "proxy/FakeObject.h"
#include "targetsystem/proxy/EventCookie.h"

namespace {

constexpr IID eventsId{0x11, 0x22, 0x33, {4, 5, 6, 7, 8, 9, 10, 11}};

/// A source and its connection point in one, which accepts any number of sinks.
class FakeSource final : public FakeObject<IConnectionPointContainer, IConnectionPoint> {
public:
    HRESULT adviseResult = S_OK;
    HRESULT unadviseResult = S_OK;
    DWORD made = 0;
    DWORD ended = 0;
    std::function<void()> meanwhile = [] {};  ///< in the next call

    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint** found) override {
        AddRef();
        *found = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD* cookie) override {
        if (SUCCEEDED(adviseResult))
            *cookie = ++made;
        std::exchange(meanwhile, [] {})();
        return adviseResult;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override {
        ++ended;
        std::exchange(meanwhile, [] {})();
        return unadviseResult;
    }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
};

struct EventCookie : testing::Test {
    FakeSource source;
    FakeUnknown sink;

    HRESULT advise(ZrAtlCom::EventCookie& cookie) {
        return cookie.advise(static_cast<IConnectionPoint*>(&source), &sink, eventsId);
    }
};

TEST_F(EventCookie, EndsEachConnectionOnce) {
    {
        ZrAtlCom::EventCookie cookie;
        source.adviseResult = E_OUTOFMEMORY;
        EXPECT_EQ(advise(cookie), E_OUTOFMEMORY);
        EXPECT_EQ(cookie.advise(&sink, &sink, eventsId), E_NOINTERFACE);
        EXPECT_EQ(cookie.unadvise(), S_OK);
        source.adviseResult = S_OK;
        EXPECT_EQ(advise(cookie), S_OK);
        EXPECT_EQ(advise(cookie), S_FALSE);
        source.unadviseResult = E_ABORT;
        EXPECT_EQ(cookie.unadvise(), E_ABORT);
    }
    EXPECT_EQ(source.made, 1u);
    EXPECT_EQ(source.ended, 2u);
    EXPECT_EQ(source.references(), 1);
}

// As from another thread: in the middle of the source's own calls.
TEST_F(EventCookie, OverlappingCallsEndEveryConnectionExactlyOnce) {
    ZrAtlCom::EventCookie cookie;
    source.meanwhile = [&] { EXPECT_EQ(advise(cookie), S_OK); };
    EXPECT_EQ(advise(cookie), S_FALSE) << "the other was faster";
    EXPECT_EQ(source.made, 2u);
    EXPECT_EQ(source.ended, 1u);
    EXPECT_TRUE(cookie.advised());
    source.meanwhile = [&] { EXPECT_EQ(cookie.unadvise(), S_OK); };
    EXPECT_EQ(cookie.unadvise(), S_OK);
    EXPECT_EQ(source.ended, 2u);
    EXPECT_EQ(source.references(), 1);
}

}  // namespace
