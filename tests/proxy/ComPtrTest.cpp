#include <utility>

#include <gtest/gtest.h>

#include "proxy/FakeObject.h"
#include "target/proxy/CAtlException.h"
#include "target/proxy/ComPtr.h"

namespace {

using ZrAtlCom::ComPtr;

HRESULT handOut(FakeDispatch& object, IDispatch** result) {
    object.AddRef();
    *result = &object;
    return S_OK;
}

TEST(ComPtr, countsEveryWayInAndOut) {
    FakeDispatch object;
    FakeDispatch other;
    {
        ComPtr<IDispatch> added(&object);
        EXPECT_EQ(object.references(), 2);
        ComPtr<IDispatch> copy = added;
        EXPECT_EQ(object.references(), 3);
        const ComPtr<IDispatch> moved = std::move(copy);
        EXPECT_EQ(object.references(), 3);
        EXPECT_FALSE(copy);
        const ComPtr<IUnknown> widened = moved;
        EXPECT_EQ(object.references(), 4);

        added = moved;
        added = std::as_const(added);
        EXPECT_EQ(object.references(), 4);
        ASSERT_EQ(handOut(other, added.put()), S_OK);
        EXPECT_EQ(object.references(), 3);
        EXPECT_EQ(other.references(), 2);

        added.attach(nullptr);
        EXPECT_EQ(other.references(), 1);
        other.AddRef();
        added.attach(&other);
        IDispatch* const given = added.detach();
        EXPECT_EQ(other.references(), 2);
        EXPECT_EQ(given->Release(), 1u);
    }
    EXPECT_EQ(object.references(), 1);
    EXPECT_EQ(other.references(), 1);
}

TEST(ComPtr, queryIsEmptyOnRefusal) {
    FakeDispatch object;
    const ComPtr<IUnknown> pointer(&object);
    EXPECT_EQ(pointer.query<IDispatch>().get(), &object);
    EXPECT_FALSE(pointer.query<IConnectionPoint>());
    EXPECT_FALSE(ComPtr<IUnknown>().query<IDispatch>());
    EXPECT_EQ(object.references(), 2);
}

TEST(ComPtr, releasesWhenAnExceptionPasses) {
    FakeDispatch object;
    const auto failHalfWay = [&object] {
        ComPtr<IDispatch> received;
        ZrAtlCom::check(handOut(object, received.put()));
        const auto queried = received.query<IUnknown>();
        EXPECT_EQ(object.references(), 3);
        ZrAtlCom::check(E_ABORT);
    };
    EXPECT_THROW(failHalfWay(), ZrAtlCom::CAtlException);
    EXPECT_EQ(object.references(), 1);
}

}  // namespace
