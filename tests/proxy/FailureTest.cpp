#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "proxy/ScriptedErrorMessage.h"
#include "target/proxy/CAtlException.h"
#include "target/proxy/CatchToHresult.h"
#include "target/proxy/ReceiveText.h"

namespace {

using ZrAtlCom::catchToHresult;
using ZrAtlCom::CAtlException;
using ZrAtlCom::check;
using ZrAtlCom::receiveText;

TEST(Failure, becomesAnExceptionWithItsText) {
    scriptErrorMessage(E_NOTIMPL, nullptr);
    EXPECT_EQ(check(S_OK), S_OK);
    EXPECT_EQ(check(S_FALSE), S_FALSE);
    try {
        check(static_cast<HRESULT>(0x98110745));
        FAIL() << "no exception";
    } catch (const CAtlException& exception) {
        EXPECT_EQ(exception.hresult(), static_cast<HRESULT>(0x98110745));
        EXPECT_STREQ(exception.what(), "FNX ERROR: timeout elapsed");
    }
}

TEST(Failure, leavesABoundaryAsItsHresult) {
    EXPECT_EQ(catchToHresult([] {}), S_OK);
    EXPECT_EQ(catchToHresult([] { return S_FALSE; }), S_FALSE);
    EXPECT_EQ(catchToHresult([] { check(E_ABORT); }), E_ABORT);
    EXPECT_EQ(catchToHresult([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(catchToHresult([] { throw std::logic_error("broken"); }), E_FAIL);
    EXPECT_EQ(catchToHresult([] { throw 5; }), E_FAIL);
}

struct Source {
    HRESULT result = S_OK;

    HRESULT STDMETHODCALLTYPE get_Text(LONG number, BSTR* text) const {
        *text = number > 0 ? newBstr(std::to_string(number) + " \xC2\xB0") : nullptr;
        return result;
    }
};

TEST(ReceiveText, convertsAndFreesEvenWhenTheCallFails) {
    const Source good;
    EXPECT_EQ(receiveText(&Source::get_Text, good, 7), "7 \xC2\xB0");
    EXPECT_EQ(receiveText(&Source::get_Text, &good, 0), "");
    const Source bad{E_ABORT};
    EXPECT_THROW(receiveText(&Source::get_Text, bad, 7), CAtlException);
}

}  // namespace
