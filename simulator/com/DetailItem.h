#pragma once

#include <string>

#include "simulator/com/RuntimeObject.h"
#include "simulator/plant/EventCatalog.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// A detail in one language.
class DetailItem final : public RuntimeObject<ZrEventLoggerFnxProxyLib::IZrDetail> {
public:
    DetailItem(std::shared_ptr<Border> border, const Detail& entry, LCID lcid)
        : RuntimeObject(std::move(border)),
          key(entry.key),
          text(entry.text.inLanguage(lcid)),
          comment(entry.comment.inLanguage(lcid)) {}

    HRESULT STDMETHODCALLTYPE get_Key(BSTR* result) override {
        return read(Operation::GetText, result, [&] { return newBstr(key); });
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* result) override {
        return read(Operation::GetText, result, [&] { return newBstr(text); });
    }
    HRESULT STDMETHODCALLTYPE get_Comment(BSTR* result) override {
        return read(Operation::GetText, result, [&] { return newBstr(comment); });
    }

private:
    const std::string key;
    const std::string text;
    const std::string comment;
};

}  // namespace ZrSimulator
