#include <new>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "proxy/FakeObject.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/CatchToHresult.h"
#include "targetsystem/proxy/ComPtr.h"

namespace {

using ZrAtlCom::ComPtr;

TEST(ComPtr, countsEveryWayInAndOutEvenWhenAnExceptionPasses) {
    FakeUnknown object;
    const auto failHalfWay = [&object] {
        ComPtr<IUnknown> pointer(&object);
        ComPtr<IUnknown> copy = pointer;
        EXPECT_EQ(object.references(), 3);
        const ComPtr<IUnknown> moved = std::move(copy);
        pointer = moved;
        pointer = std::as_const(pointer);
        EXPECT_EQ(object.references(), 3);
        object.AddRef();
        *pointer.put() = &object;
        pointer.attach(pointer.detach());
        EXPECT_EQ(object.references(), 3);
        const auto queried = pointer.query<IUnknown>();
        EXPECT_FALSE(pointer.query<IConnectionPoint>());
        EXPECT_EQ(object.references(), 4);
        ZrAtlCom::check(E_ABORT);
    };
    EXPECT_THROW(failHalfWay(), ZrAtlCom::CAtlException);
    EXPECT_EQ(object.references(), 1);
}

TEST(Failure, leavesABoundaryAsItsHresult) {
    EXPECT_EQ(ZrAtlCom::catchToHresult([] { return ZrAtlCom::check(S_FALSE); }), S_FALSE);
    EXPECT_EQ(ZrAtlCom::catchToHresult([] { ZrAtlCom::check(E_ABORT); }), E_ABORT);
    EXPECT_EQ(ZrAtlCom::catchToHresult([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(ZrAtlCom::catchToHresult([] { throw std::logic_error("broken"); }), E_FAIL);
    EXPECT_EQ(ZrAtlCom::catchToHresult([] { throw 5; }), E_FAIL);
}

}  // namespace
