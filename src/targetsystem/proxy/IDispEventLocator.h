#pragma once

#include "targetsystem/proxy/CallDescription.h"

namespace ZrAtlCom {

/// A sink that can be asked how a member is called whose table entry does not tell.
struct IDispEventLocator : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE GetFuncInfoFromId(REFIID iid, DISPID id, LCID lcid,
                                                        CallDescription& call) = 0;

protected:
    ~IDispEventLocator() = default;
};

}  // namespace ZrAtlCom
