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
    DWORD lastEnded = 0;
    std::function<void()> meanwhile;  ///< once, inside the next call of those below

    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint** found) override {
        AddRef();
        *found = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD* cookie) override {
        if (FAILED(adviseResult))
            return adviseResult;
        *cookie = ++made;
        overlap();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        ++ended;
        lastEnded = cookie;
        overlap();
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

private:
    void overlap() {
        if (const auto other = std::exchange(meanwhile, nullptr))
            other();
    }
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

TEST_F(EventCookie, CallersThatOverlapEndEveryConnectionExactlyOnce) {
    ZrAtlCom::EventCookie cookie;
    source.meanwhile = [&] { EXPECT_EQ(advise(cookie), S_OK); };
    EXPECT_EQ(advise(cookie), S_FALSE) << "the other was faster";
    EXPECT_EQ(source.made, 2u);
    EXPECT_EQ(source.ended, 1u);
    EXPECT_TRUE(cookie.advised());

    source.meanwhile = [&] { EXPECT_EQ(cookie.unadvise(), S_OK); };
    EXPECT_EQ(cookie.unadvise(), S_OK);
    EXPECT_EQ(source.ended, 2u);

    // A connection that could not be ended does not take the place of one that was made meanwhile.
    advise(cookie);
    source.unadviseResult = E_ABORT;
    source.meanwhile = [&] { EXPECT_EQ(advise(cookie), S_OK); };
    EXPECT_EQ(cookie.unadvise(), E_ABORT);
    source.unadviseResult = S_OK;
    EXPECT_EQ(cookie.unadvise(), S_OK);
    EXPECT_EQ(source.lastEnded, source.made);
    EXPECT_EQ(source.references(), 1);
}

}  // namespace
