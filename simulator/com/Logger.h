#pragma once

#include "simulator/com/CatchToResult.h"
#include "simulator/com/ComObject.h"
#include "simulator/com/ConnectionPoint.h"
#include "simulator/com/LoggerLink.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// The logger object of a client. Texts come in the language asked for, in one with the same
/// primary language, in English, or in any other (see TextTable), but a source name is translated
/// only into its own language. What a runtime does not know is answered with "not found".
class Logger final
    : public ComObject<ZrEventLoggerFnxProxyLib::IZrEventLogger4,
                       ZrEventLoggerFnxProxyLib::IZrLoggerSettings, IConnectionPointContainer> {
public:
    explicit Logger(Simulator& simulator);

    LoggerLink& link() { return loggerLink; }

    HRESULT STDMETHODCALLTYPE Connect(BSTR netId) override;
    HRESULT STDMETHODCALLTYPE Disconnect() override;
    HRESULT STDMETHODCALLTYPE get_IsConnected(VARIANT_BOOL* connected) override;
    HRESULT STDMETHODCALLTYPE
    GetActiveAlarms(ZrEventLoggerFnxProxyLib::IZrAlarmCollection** alarms) override;
    HRESULT STDMETHODCALLTYPE ClearLoggedEvents() override;
    HRESULT STDMETHODCALLTYPE GetLoggedEvents(
        ULONG count, ZrEventLoggerFnxProxyLib::IZrLoggedEventCollection** events) override;
    HRESULT STDMETHODCALLTYPE GetEventText(REFGUID eventClass, ULONG eventId, const BYTE* types,
                                           ULONG typesSize, const BYTE* data, ULONG dataSize,
                                           LCID lcid, BSTR* text) override;
    HRESULT STDMETHODCALLTYPE GetEventClassName(REFGUID eventClass, LCID lcid, BSTR* name) override;
    HRESULT STDMETHODCALLTYPE GetSourceName(BSTR source, LCID lcid, BSTR* name) override;
    HRESULT STDMETHODCALLTYPE
    GetCauseRemedy(REFGUID eventClass, ULONG eventId, LCID lcid,
                   ZrEventLoggerFnxProxyLib::IZrCauseRemedyCollection** entries) override;
    HRESULT STDMETHODCALLTYPE
    GetDetails(REFGUID eventClass, ULONG eventId, LCID lcid,
               ZrEventLoggerFnxProxyLib::IZrDetailCollection** details) override;
    HRESULT STDMETHODCALLTYPE ConnectWithSettings(
        ZrEventLoggerFnxProxyLib::IZrConnectionSettings* settings, BSTR netId) override;

    HRESULT STDMETHODCALLTYPE get_Timeout(ULONG* milliseconds) override;
    HRESULT STDMETHODCALLTYPE put_Timeout(ULONG milliseconds) override;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

private:
    HRESULT connect(Operation operation, BSTR netId, bool preloadTranslations);
    /// A call that asks the runtime: `ask(runtime)` is run when the border lets the call in and
    /// the logger is connected. `result` is where it puts the answer, null until then.
    template <class Result, class Ask>
    HRESULT query(Operation operation, Result** result, Ask ask);
    void countReference(int change) noexcept override { loggerLink.countReference(change); }
    std::optional<HRESULT> enter(Operation operation) override {
        return loggerLink.enter(operation);
    }

    LoggerLink loggerLink;
    ConnectionPoint notifications;
};

}  // namespace ZrSimulator
