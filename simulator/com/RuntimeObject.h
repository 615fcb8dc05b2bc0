#pragma once

#include <memory>
#include <utility>

#include "platform/Text.h"
#include "simulator/com/CatchToResult.h"
#include "simulator/com/ComObject.h"
#include "simulator/runtime/Border.h"

namespace ZrSimulator {

/// An object of one runtime for all its life.
template <class First, class... Others>
class RuntimeObject : public ComObject<First, Others...> {
protected:
    explicit RuntimeObject(std::shared_ptr<Border> border) : border(std::move(border)) {}

    /// A call that reads one value: `get` is run when the border lets the call in.
    template <class Value, class Get>
    HRESULT read(Operation operation, Value* value, Get get) {
        return catchToResult([&]() -> HRESULT {
            if (!value)
                return E_POINTER;
            *value = Value{};
            if (const auto answer = border->enter(operation))
                return *answer;
            *value = get();
            return S_OK;
        });
    }

    void countReference(int change) noexcept final { border->references += change; }
    std::optional<HRESULT> enter(Operation operation) final { return border->enter(operation); }

    const std::shared_ptr<Border> border;
};

/// A call that reads one value and is not counted.
template <class Value, class Get>
HRESULT readPlain(Value* value, Get get) noexcept {
    return catchToResult([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = get();
        return S_OK;
    });
}

inline VARIANT_BOOL toVariantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

}  // namespace ZrSimulator
