/// The event-logger proxy library: its two functions and its interfaces, in the order of their
/// virtual tables. The number behind a method is its position, IUnknown and IDispatch included;
/// positions without a name are kept by reserved slots that answer E_NOTIMPL.
///
/// Every method answers an HRESULT (negative: failure). The receiver releases every interface and
/// frees every BSTR that it is handed. Indexes start at 0.
///
/// What callers may rely on: notifications come on a thread of the library's own, never from
/// inside a call and with no lock of the library held; one alarm is one object in notifications
/// and in GetActiveAlarms; Disconnect may be called from any thread at any time and waits for no
/// notification; Unadvise returns when a running notification has ended, unless it is called from
/// it; Confirm does not wait for its own notification.
#pragma once

#include "platform/Automation.h"

#if defined(_WIN32) && defined(ZR_EVENT_LOGGER_PROXY_BUILD)
#define ZR_PROXY_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZR_PROXY_API __declspec(dllimport)
#else
#define ZR_PROXY_API __attribute__((visibility("default")))
#endif

#define ZR_RESERVED_SLOT(position) \
    virtual HRESULT STDMETHODCALLTYPE Reserved##position() { return E_NOTIMPL; }

#define ZR_INTERFACE_ID(Interface, ...)                               \
    }                                                                 \
    template <>                                                       \
    struct InterfaceId<ZrEventLoggerFnxProxyLib::Interface> {         \
        static const IID& value() {                                   \
            static constexpr IID id{__VA_ARGS__};                     \
            return id;                                                \
        }                                                             \
    };                                                                \
    namespace ZrEventLoggerFnxProxyLib {

namespace ZrEventLoggerFnxProxyLib {

/// Which of its optional parts an event's source has; asked one at a time.
enum class SourceAttribute : LONG { id = 1, guid = 2, name = 4 };

enum tagDatabaseChangeReasonEnum : LONG {
    databaseChangeUndefined = 0,
    databaseChangeLoggedEventsCleared = 1,
    databaseChangeMaximumSizeReached = 2,
    databaseChangeDeleted = 3,
};

enum class LoggedEventType : ULONG { message = 0, alarm = 1 };

/// Where the two parts of an event's arguments lie in the block that GetBlock fills. The block
/// is typesSize + dataSize bytes long.
struct ArgumentBlockLayout {
    LONG count;
    LONG typesOffset;
    LONG typesSize;
    LONG dataOffset;
    LONG dataSize;
};

/// What alarms, messages and logged events have in common, at the same positions.
struct IZrEvent : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_EventClass(GUID* eventClass) = 0;  // 7
    virtual HRESULT STDMETHODCALLTYPE get_EventId(ULONG* eventId) = 0;       // 8
    virtual HRESULT STDMETHODCALLTYPE get_Severity(ULONG* severity) = 0;     // 9: 0 to 4
    ZR_RESERVED_SLOT(10)
    virtual HRESULT STDMETHODCALLTYPE HasSource(SourceAttribute kind, VARIANT_BOOL* has) = 0;  // 11
    virtual HRESULT STDMETHODCALLTYPE get_SourceId(ULONG* id) = 0;                             // 12
    virtual HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID* guid) = 0;                          // 13
    virtual HRESULT STDMETHODCALLTYPE get_SourceName(BSTR* name) = 0;                          // 14
    ZR_RESERVED_SLOT(15)
    virtual HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME* time) = 0;  // 16

protected:
    ~IZrEvent() = default;
};

/// An event that is raised, cleared and, where it requires so, confirmed.
struct IZrAlarm : IZrEvent {
    ZR_RESERVED_SLOT(17)
    ZR_RESERVED_SLOT(18)
    virtual HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) = 0;               // 19
    virtual HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) = 0;  // 20
    ZR_RESERVED_SLOT(21)
    ZR_RESERVED_SLOT(22)
    virtual HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) = 0;       // 23
    virtual HRESULT STDMETHODCALLTYPE get_ConfirmationState(ULONG* state) = 0;   // 24: 0 to 4
    virtual HRESULT STDMETHODCALLTYPE Confirm() = 0;                             // 25
    ZR_RESERVED_SLOT(26)
    virtual HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) = 0;  // 27

protected:
    ~IZrAlarm() = default;
};
ZR_INTERFACE_ID(IZrAlarm, 0xAF2BDDAD, 0x91C8, 0x4436,
                {0x91, 0xDC, 0x53, 0x81, 0x72, 0xDE, 0x47, 0x0E})

/// A one-shot event.
struct IZrMessage : IZrEvent {
    ZR_RESERVED_SLOT(17)
    ZR_RESERVED_SLOT(18)
    ZR_RESERVED_SLOT(19)
    ZR_RESERVED_SLOT(20)
    ZR_RESERVED_SLOT(21)
    ZR_RESERVED_SLOT(22)
    ZR_RESERVED_SLOT(23)
    ZR_RESERVED_SLOT(24)
    ZR_RESERVED_SLOT(25)
    virtual HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) = 0;               // 26
    virtual HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) = 0;  // 27

protected:
    ~IZrMessage() = default;
};
ZR_INTERFACE_ID(IZrMessage, 0xCA98EF12, 0xA80E, 0x4C34,
                {0x9E, 0x89, 0xF6, 0xC5, 0xE4, 0x76, 0x4F, 0x33})

/// An entry of the logger's history.
struct IZrLoggedEvent : IZrEvent {
    virtual HRESULT STDMETHODCALLTYPE get_EventType(LoggedEventType* type) = 0;            // 17
    virtual HRESULT STDMETHODCALLTYPE get_RequiresConfirmation(VARIANT_BOOL* requiresIt) = 0;  // 18
    ZR_RESERVED_SLOT(19)
    ZR_RESERVED_SLOT(20)
    ZR_RESERVED_SLOT(21)
    ZR_RESERVED_SLOT(22)
    virtual HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) = 0;  // 23
    ZR_RESERVED_SLOT(24)
    ZR_RESERVED_SLOT(25)
    ZR_RESERVED_SLOT(26)
    virtual HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) = 0;  // 27

protected:
    ~IZrLoggedEvent() = default;
};
ZR_INTERFACE_ID(IZrLoggedEvent, 0xD0815A1C, 0xB065, 0x4A5A,
                {0xBA, 0xF5, 0xCC, 0xDE, 0x52, 0x46, 0x7D, 0x63})

/// Optional extension of a logged event.
struct IZrLoggedEvent2 : IUnknown {
    /// Whether the alarm stood in the list of active alarms when the log was fetched.
    virtual HRESULT STDMETHODCALLTYPE get_IsActive(VARIANT_BOOL* active) = 0;  // 3

protected:
    ~IZrLoggedEvent2() = default;
};
ZR_INTERFACE_ID(IZrLoggedEvent2, 0xDB1885BF, 0x8E4C, 0x4CF7,
                {0x8D, 0x6B, 0x2B, 0x27, 0x17, 0x77, 0xFB, 0x9B})

/// Optional, of alarms, messages and logged events: a text that the application attached.
struct IZrJsonAttribute : IDispatch {
    ZR_RESERVED_SLOT(7)
    ZR_RESERVED_SLOT(8)
    ZR_RESERVED_SLOT(9)
    ZR_RESERVED_SLOT(10)
    ZR_RESERVED_SLOT(11)
    ZR_RESERVED_SLOT(12)
    ZR_RESERVED_SLOT(13)
    ZR_RESERVED_SLOT(14)
    ZR_RESERVED_SLOT(15)
    ZR_RESERVED_SLOT(16)
    ZR_RESERVED_SLOT(17)
    ZR_RESERVED_SLOT(18)
    ZR_RESERVED_SLOT(19)
    ZR_RESERVED_SLOT(20)
    ZR_RESERVED_SLOT(21)
    ZR_RESERVED_SLOT(22)
    ZR_RESERVED_SLOT(23)
    ZR_RESERVED_SLOT(24)
    ZR_RESERVED_SLOT(25)
    ZR_RESERVED_SLOT(26)
    ZR_RESERVED_SLOT(27)
    virtual HRESULT STDMETHODCALLTYPE get_JsonAttribute(BSTR* json) = 0;  // 28

protected:
    ~IZrJsonAttribute() = default;
};
ZR_INTERFACE_ID(IZrJsonAttribute, 0xD9CD7519, 0x494B, 0x47B1,
                {0xAF, 0x96, 0x99, 0x5E, 0xAA, 0xF8, 0xDA, 0xBD})

/// Optional, of alarms, messages and logged events: all arguments as one block of bytes.
struct IZrEventArguments : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetLayout(ArgumentBlockLayout* layout) = 0;   // 3
    virtual HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) = 0;       // 4

protected:
    ~IZrEventArguments() = default;
};
ZR_INTERFACE_ID(IZrEventArguments, 0x20C6E3C7, 0x253F, 0x479B,
                {0x9E, 0x61, 0x4A, 0x09, 0x85, 0x3C, 0x51, 0xBD})

/// Optional, of alarms and logged events: tells apart two instances of one alarm that were
/// raised in the same controller cycle and so bear the same time. An alarm keeps its id as long as
/// it lives, also when it is raised again; no other live alarm of its class has it.
struct IZrEventInstance : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* id) = 0;  // 3

protected:
    ~IZrEventInstance() = default;
};
ZR_INTERFACE_ID(IZrEventInstance, 0x5A162ADB, 0x7ECB, 0x4A9A,
                {0x9C, 0xCB, 0xF0, 0xC3, 0x9F, 0xB1, 0xE9, 0x3E})

/// A snapshot; it does not change after it was handed out.
template <class Item>
struct IZrCollection : IDispatch {
    ZR_RESERVED_SLOT(7)
    virtual HRESULT STDMETHODCALLTYPE get_Item(ULONG index, Item** item) = 0;  // 8
    virtual HRESULT STDMETHODCALLTYPE get_Count(ULONG* count) = 0;             // 9

protected:
    ~IZrCollection() = default;
};

/// One possible cause of an event and what to do about it, in one language.
struct IZrCauseRemedy : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Id(BSTR* id) = 0;          // 7
    virtual HRESULT STDMETHODCALLTYPE get_Cause(BSTR* cause) = 0;    // 8
    virtual HRESULT STDMETHODCALLTYPE get_Remedy(BSTR* remedy) = 0;  // 9

protected:
    ~IZrCauseRemedy() = default;
};
ZR_INTERFACE_ID(IZrCauseRemedy, 0x545650CB, 0x4C4D, 0x4EFC,
                {0x89, 0xF2, 0x48, 0x77, 0x9E, 0x12, 0xFC, 0x7D})

/// A named detail of an event, in one language.
struct IZrDetail : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Key(BSTR* key) = 0;          // 7
    virtual HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) = 0;        // 8
    virtual HRESULT STDMETHODCALLTYPE get_Comment(BSTR* comment) = 0;  // 9

protected:
    ~IZrDetail() = default;
};
ZR_INTERFACE_ID(IZrDetail, 0x80D743CE, 0x7D80, 0x4EE7,
                {0xBB, 0x29, 0xB7, 0x92, 0x2B, 0x7C, 0xFB, 0x43})

struct IZrAlarmCollection : IZrCollection<IZrAlarm> {
protected:
    ~IZrAlarmCollection() = default;
};
ZR_INTERFACE_ID(IZrAlarmCollection, 0x1BD127A7, 0x6D6F, 0x436A,
                {0x96, 0x37, 0xE2, 0xBA, 0x66, 0x0A, 0x35, 0x88})

struct IZrLoggedEventCollection : IZrCollection<IZrLoggedEvent> {
protected:
    ~IZrLoggedEventCollection() = default;
};
ZR_INTERFACE_ID(IZrLoggedEventCollection, 0x0056FE32, 0xE1B2, 0x4C7B,
                {0xA3, 0xEC, 0xA0, 0x0B, 0xC0, 0x26, 0x79, 0xE3})

struct IZrCauseRemedyCollection : IZrCollection<IZrCauseRemedy> {
protected:
    ~IZrCauseRemedyCollection() = default;
};
ZR_INTERFACE_ID(IZrCauseRemedyCollection, 0xDDF9C45D, 0x7CD6, 0x4FCF,
                {0x95, 0x9C, 0x64, 0x94, 0xE7, 0x42, 0x91, 0x79})

struct IZrDetailCollection : IZrCollection<IZrDetail> {
protected:
    ~IZrDetailCollection() = default;
};
ZR_INTERFACE_ID(IZrDetailCollection, 0x60DEA8C0, 0xAAD4, 0x45BB,
                {0x93, 0x0A, 0x9D, 0xB0, 0x62, 0xD7, 0x15, 0x8A})

/// Created for one connect and handed to ConnectWithSettings.
struct IZrConnectionSettings : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_PreloadTranslations(VARIANT_BOOL* preload) = 0;  // 7
    virtual HRESULT STDMETHODCALLTYPE put_PreloadTranslations(VARIANT_BOOL preload) = 0;   // 8

protected:
    ~IZrConnectionSettings() = default;
};
ZR_INTERFACE_ID(IZrConnectionSettings, 0x2FC2863F, 0x4392, 0x4CB7,
                {0xAA, 0x75, 0xD5, 0x4B, 0xA6, 0x55, 0xF8, 0xAA})

/// From QueryInterface on the logger.
struct IZrLoggerSettings : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Timeout(ULONG* milliseconds) = 0;  // 3
    virtual HRESULT STDMETHODCALLTYPE put_Timeout(ULONG milliseconds) = 0;   // 4

protected:
    ~IZrLoggerSettings() = default;
};
ZR_INTERFACE_ID(IZrLoggerSettings, 0x5CAA34B7, 0xA3E9, 0x4D20,
                {0x9A, 0xF5, 0x05, 0xDE, 0x61, 0x5C, 0x95, 0x70})

/// The event logger of one target: connection and queries. Notifications leave it through its
/// connection point for _IZrEventLoggerEvents.
struct IZrEventLogger4 : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Connect(BSTR netId) = 0;                             // 7
    virtual HRESULT STDMETHODCALLTYPE Disconnect() = 0;                                    // 8
    virtual HRESULT STDMETHODCALLTYPE get_IsConnected(VARIANT_BOOL* connected) = 0;        // 9
    virtual HRESULT STDMETHODCALLTYPE GetActiveAlarms(IZrAlarmCollection** alarms) = 0;    // 10
    virtual HRESULT STDMETHODCALLTYPE ClearLoggedEvents() = 0;                             // 11
    ZR_RESERVED_SLOT(12)
    /// The newest `count` entries, oldest first.
    virtual HRESULT STDMETHODCALLTYPE GetLoggedEvents(ULONG count,
                                                      IZrLoggedEventCollection** events) = 0;  // 13
    /// The event's text in a language, formatted with its arguments (both parts may be empty).
    virtual HRESULT STDMETHODCALLTYPE GetEventText(REFGUID eventClass, ULONG eventId,
                                                   const BYTE* types, ULONG typesSize,
                                                   const BYTE* data, ULONG dataSize, LCID lcid,
                                                   BSTR* text) = 0;  // 14
    virtual HRESULT STDMETHODCALLTYPE GetEventClassName(REFGUID eventClass, LCID lcid,
                                                        BSTR* name) = 0;  // 15
    /// S_FALSE: the source name has no translation.
    virtual HRESULT STDMETHODCALLTYPE GetSourceName(BSTR source, LCID lcid, BSTR* name) = 0;  // 16
    virtual HRESULT STDMETHODCALLTYPE GetCauseRemedy(REFGUID eventClass, ULONG eventId, LCID lcid,
                                                     IZrCauseRemedyCollection** entries) = 0;  // 17
    virtual HRESULT STDMETHODCALLTYPE GetDetails(REFGUID eventClass, ULONG eventId, LCID lcid,
                                                 IZrDetailCollection** details) = 0;  // 18
    ZR_RESERVED_SLOT(19)
    ZR_RESERVED_SLOT(20)
    ZR_RESERVED_SLOT(21)
    ZR_RESERVED_SLOT(22)
    ZR_RESERVED_SLOT(23)
    ZR_RESERVED_SLOT(24)
    ZR_RESERVED_SLOT(25)
    ZR_RESERVED_SLOT(26)
    ZR_RESERVED_SLOT(27)
    ZR_RESERVED_SLOT(28)
    ZR_RESERVED_SLOT(29)
    virtual HRESULT STDMETHODCALLTYPE ConnectWithSettings(IZrConnectionSettings* settings,
                                                          BSTR netId) = 0;  // 30

protected:
    ~IZrEventLogger4() = default;
};
ZR_INTERFACE_ID(IZrEventLogger4, 0x5B13E73E, 0x0EBA, 0x40AA,
                {0x89, 0x81, 0x93, 0xE3, 0x8D, 0xC8, 0x64, 0xCC})

/// Outgoing, dispatch only. Dispatch ids and arguments: 2 OnMessageSent(message),
/// 3 OnAlarmRaised(alarm), 4 OnAlarmCleared(alarm, removed), 5 OnAlarmConfirmed(alarm, removed),
/// 10 OnDatabaseChanged(reason). `removed`: the alarm has left the list of active alarms.
struct _IZrEventLoggerEvents;
inline constexpr IID IID__IZrEventLoggerEvents{
    0x716938F9, 0x6F39, 0x4B57, {0x9D, 0x1C, 0x65, 0xBA, 0xD5, 0xE3, 0x10, 0xBF}};

inline constexpr CLSID CLSID_EventLogger{
    0x448DB9A8, 0xA040, 0x42EF, {0x90, 0x28, 0x73, 0xA5, 0x0B, 0x40, 0xF6, 0x66}};
inline constexpr CLSID CLSID_ConnectionSettings{
    0xDA80CED3, 0xEB84, 0x4E60, {0x85, 0xDC, 0x95, 0x50, 0xB1, 0xE6, 0x49, 0x97}};

ZR_PROXY_API HRESULT CreateInstance(REFCLSID classId, REFIID interfaceId, void** object);

}  // namespace ZrEventLoggerFnxProxyLib

/// The library's own text for an HRESULT; a failure when it has none.
extern "C" ZR_PROXY_API HRESULT ZrEventLoggerFnxProxyLibErrorMessage(HRESULT hr, BSTR* text);
