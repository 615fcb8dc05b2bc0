#include "targetsystem/proxy/SinkEntry.h"

#include <algorithm>
#include <array>

#include "targetsystem/proxy/ComPtr.h"

namespace ZrAtlCom {

namespace {

using MappedArguments = std::array<VARIANTARG*, maxParameterCount>;

bool wellFormed(const DISPPARAMS& arguments) {
    return arguments.cNamedArgs <= arguments.cArgs && (arguments.rgvarg || arguments.cArgs == 0) &&
           (arguments.rgdispidNamedArgs || arguments.cNamedArgs == 0);
}

/// Named arguments say their position, the others follow in reverse order.
HRESULT mapArguments(const DISPPARAMS& arguments, MappedArguments& mapped) {
    for (UINT i = 0; i < arguments.cNamedArgs; ++i) {
        const auto position = static_cast<ULONG>(arguments.rgdispidNamedArgs[i]);
        if (position >= maxParameterCount)
            return E_FAIL;
        mapped[position] = &arguments.rgvarg[i];
    }
    for (UINT i = arguments.cNamedArgs; i < arguments.cArgs; ++i)
        mapped[arguments.cArgs - i - 1] = &arguments.rgvarg[i];
    const auto end = mapped.begin() + arguments.cArgs;
    return std::find(mapped.begin(), end, nullptr) == end ? S_OK : E_INVALIDARG;
}

/// Objects that come as IUnknown, as IDispatch for the length of a call.
class QueriedObjects {
public:
    /// Leaves an object that refuses in its place.
    void replace(const CallDescription& call, MappedArguments& mapped) {
        for (UINT i = 0; i < call.parameterCount; ++i)
            if (call.parameterTypes[i] == VT_DISPATCH && mapped[i]->vt == VT_UNKNOWN)
                replace(i, mapped[i]);
    }

private:
    void replace(UINT position, VARIANTARG*& argument) {
        objects[position] = ComPtr<IUnknown>(argument->punkVal).query<IDispatch>();
        if (argument->punkVal && !objects[position])
            return;
        VariantInit(&variants[position]);
        variants[position].vt = VT_DISPATCH;
        variants[position].pdispVal = objects[position].get();
        argument = &variants[position];
    }

    std::array<ComPtr<IDispatch>, maxParameterCount> objects;
    std::array<VARIANTARG, maxParameterCount> variants;  ///< refer to the objects
};

/// The kinds of a 32-bit number are as good as each other.
VARTYPE kindOf(VARTYPE type) {
    return type == VT_INT || type == VT_UI4 || type == VT_UINT ? static_cast<VARTYPE>(VT_I4) : type;
}

/// Values are read out of the variants as they are: one of another type, a number for an object,
/// would be taken for what it is not.
bool fit(const CallDescription& call, const MappedArguments& mapped) {
    return std::equal(call.parameterTypes, call.parameterTypes + call.parameterCount,
                      mapped.begin(), [](VARTYPE type, const VARIANTARG* argument) {
                          return kindOf(type) == kindOf(argument->vt);
                      });
}

HRESULT dispatch(IDispatch* sink, const SinkEntry& entry, const CallDescription& call,
                 const MappedArguments& mapped, VARIANT* result) {
    VARIANTARG self;
    VariantInit(&self);
    self.vt = VT_DISPATCH;
    self.pdispVal = sink;

    std::array<VARTYPE, maxParameterCount + 1> types{VT_DISPATCH};
    std::array<VARIANTARG*, maxParameterCount + 1> parameters{&self};
    std::copy_n(call.parameterTypes, call.parameterCount, types.begin() + 1);
    std::copy_n(mapped.begin(), call.parameterCount, parameters.begin() + 1);
    return DispCallFunc(nullptr, entry.member, call.convention, call.returnType,
                        call.parameterCount + 1, types.data(), parameters.data(), result);
}

}  // namespace

const SinkEntry* findSinkEntry(SinkTable table, UINT controlId, REFIID interfaceId, DISPID id) {
    const auto found = std::find_if(table.begin(), table.end(), [&](const SinkEntry& entry) {
        return entry.controlId == controlId && entry.id == id && *entry.interfaceId == interfaceId;
    });
    return found == table.end() ? nullptr : &*found;
}

HRESULT callSinkMember(IDispatch* sink, const SinkEntry& entry, const CallDescription& call,
                       const DISPPARAMS* arguments, VARIANT* result) {
    if (!arguments || arguments->cArgs != call.parameterCount)
        return E_INVALIDARG;
    if (call.parameterCount > maxParameterCount)
        return E_FAIL;
    if (!wellFormed(*arguments))
        return E_INVALIDARG;
    MappedArguments mapped{};
    if (const HRESULT hr = mapArguments(*arguments, mapped); FAILED(hr))
        return hr;
    QueriedObjects queried;
    queried.replace(call, mapped);
    if (!fit(call, mapped))
        return DISP_E_TYPEMISMATCH;

    VARIANT unwanted;
    VariantInit(&unwanted);
    const HRESULT hr = dispatch(sink, entry, call, mapped, result ? result : &unwanted);
    VariantClear(&unwanted);
    return hr;
}

}  // namespace ZrAtlCom
