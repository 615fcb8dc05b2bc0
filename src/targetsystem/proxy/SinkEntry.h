#pragma once

#include <span>

#include "targetsystem/proxy/CallDescription.h"

namespace ZrAtlCom {

/// Binds one notification to a member of the sink.
struct SinkEntry {
    UINT controlId;
    const IID* interfaceId;
    DISPID id;
    /// Address of a function that takes the sink as IDispatch*, then the parameters.
    ULONG_PTR member;
    /// Null: the sink's GetFuncInfoFromId is asked at each call.
    const CallDescription* call;
};

using SinkTable = std::span<const SinkEntry>;

/// Null when there is no such notification.
const SinkEntry* findSinkEntry(SinkTable table, UINT controlId, REFIID interfaceId, DISPID id);

/// Maps the arguments to the parameters and calls the member through DispCallFunc. An object may
/// also come as IUnknown: it is asked for its IDispatch. `sink` may be destroyed by the call.
/// `result` may be null. On failure the member was not called.
HRESULT callSinkMember(IDispatch* sink, const SinkEntry& entry, const CallDescription& call,
                       const DISPPARAMS* arguments, VARIANT* result);

}  // namespace ZrAtlCom
