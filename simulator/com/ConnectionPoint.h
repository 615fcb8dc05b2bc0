#pragma once

#include "platform/Automation.h"

namespace ZrSimulator {

class Logger;

/// A logger's connection point for its notifications. It is a part of the logger and shares its
/// reference count.
class ConnectionPoint final : public IConnectionPoint {
public:
    explicit ConnectionPoint(Logger& logger) : logger(logger) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
    HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

private:
    Logger& logger;
};

}  // namespace ZrSimulator
