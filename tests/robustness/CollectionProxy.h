#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// `Collection` is the interface, `Item` that of its objects, for which `ItemProxy` stands in.
template <class Collection, class Item, class ItemProxy>
class CollectionProxy final : public ProxyObject<Collection> {
    using IZrCollection = ZrEventLoggerFnxProxyLib::IZrCollection<Item>;

public:
    static Collection* standInFor(const ZrAtlCom::ComPtr<Collection>& collection) {
        return new CollectionProxy(collection);
    }

    HRESULT STDMETHODCALLTYPE get_Item(ULONG index, Item** item) override {
        return this->template wrap<ItemProxy>(
            this->forward(__func__, &IZrCollection::get_Item, index, item), item);
    }
    HRESULT STDMETHODCALLTYPE get_Count(ULONG* count) override {
        return this->forward(__func__, &IZrCollection::get_Count, count);
    }

private:
    using ProxyObject<Collection>::ProxyObject;
};

}  // namespace bridge_test
