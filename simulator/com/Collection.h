#pragma once

#include <vector>

#include "simulator/com/RuntimeObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// A snapshot: `Interface` is the collection's, `Item` that of its objects.
template <class Interface, class Item, class Object>
class Collection final : public RuntimeObject<Interface> {
public:
    Collection(std::shared_ptr<Border> border, std::vector<Ref<Object>> objects)
        : RuntimeObject<Interface>(std::move(border)), objects(std::move(objects)) {}

    HRESULT STDMETHODCALLTYPE get_Item(ULONG index, Item** item) override {
        return catchToResult([&]() -> HRESULT {
            if (!item)
                return E_POINTER;
            *item = nullptr;
            if (const auto answer = this->border->enter(Operation::GetItem))
                return *answer;
            return index < objects.size() ? handOut(objects[index], item) : DISP_E_BADINDEX;
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(ULONG* count) override {
        return this->read(Operation::GetCount, count,
                          [&] { return static_cast<ULONG>(objects.size()); });
    }

private:
    const std::vector<Ref<Object>> objects;
};

}  // namespace ZrSimulator
