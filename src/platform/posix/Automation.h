/// The part of Windows automation that the bridge relies on, for systems that have none. Names,
/// layouts and results are those of the Windows headers; only what is used is here.
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = unsigned int;
using INT = int;
using BOOL = int;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LCID = DWORD;
using DISPID = LONG;
using HRESULT = LONG;
using SCODE = LONG;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;
using FLOAT = float;
using DOUBLE = double;
using CHAR = char;
using WCHAR = char16_t;
using OLECHAR = char16_t;
using BSTR = OLECHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using ULONG_PTR = std::uintptr_t;
using PVOID = void*;

#define OLESTR(text) u##text
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

inline constexpr HRESULT hresultFromBits(std::uint32_t bits) { return static_cast<HRESULT>(bits); }
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_UNEXPECTED = hresultFromBits(0x8000FFFF);
inline constexpr HRESULT E_NOTIMPL = hresultFromBits(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = hresultFromBits(0x80004002);
inline constexpr HRESULT E_POINTER = hresultFromBits(0x80004003);
inline constexpr HRESULT E_ABORT = hresultFromBits(0x80004004);
inline constexpr HRESULT E_FAIL = hresultFromBits(0x80004005);
inline constexpr HRESULT E_ACCESSDENIED = hresultFromBits(0x80070005);
inline constexpr HRESULT E_HANDLE = hresultFromBits(0x80070006);
inline constexpr HRESULT E_OUTOFMEMORY = hresultFromBits(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = hresultFromBits(0x80070057);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = hresultFromBits(0x80040111);
inline constexpr HRESULT CONNECT_E_NOCONNECTION = hresultFromBits(0x80040200);
inline constexpr HRESULT CONNECT_E_CANNOTCONNECT = hresultFromBits(0x80040202);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = hresultFromBits(0x80020006);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = hresultFromBits(0x80020005);
inline constexpr HRESULT DISP_E_BADVARTYPE = hresultFromBits(0x80020008);
inline constexpr HRESULT DISP_E_OVERFLOW = hresultFromBits(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = hresultFromBits(0x8002000B);
inline constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
inline constexpr bool FAILED(HRESULT hr) { return hr < 0; }

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    friend bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

inline constexpr IID IID_IUnknown{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch{0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_NULL{};
inline constexpr GUID GUID_NULL{};
inline constexpr IID IID_IConnectionPointContainer{
    0xB196B284, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IConnectionPoint{
    0xB196B286, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};

enum VARENUM : VARTYPE {
    VT_EMPTY = 0, VT_NULL = 1, VT_I2 = 2, VT_I4 = 3, VT_R4 = 4, VT_R8 = 5, VT_DATE = 7,
    VT_BSTR = 8, VT_DISPATCH = 9, VT_ERROR = 10, VT_BOOL = 11, VT_VARIANT = 12, VT_UNKNOWN = 13,
    VT_I1 = 16, VT_UI1 = 17, VT_UI2 = 18, VT_UI4 = 19, VT_I8 = 20, VT_UI8 = 21, VT_INT = 22,
    VT_UINT = 23, VT_HRESULT = 25, VT_BYREF = 0x4000,
};

enum CALLCONV { CC_CDECL = 1, CC_STDCALL = 4 };
inline constexpr WORD DISPATCH_METHOD = 1;

/// Virtual destructors are absent on purpose: lifetime is AddRef and Release alone, and a slot
/// more would move every position behind it.
struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~IUnknown() = default;
};

struct IDispatch;

struct VARIANT {
    VARTYPE vt;
    WORD wReserved1, wReserved2, wReserved3;
    union {
        LONGLONG llVal;
        LONG lVal;
        BYTE bVal;
        SHORT iVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        CHAR cVal;
        USHORT uiVal;
        ULONG ulVal;
        ULONGLONG ullVal;
        INT intVal;
        UINT uintVal;
        PVOID byref;
    };
};
using VARIANTARG = VARIANT;

struct DISPPARAMS {
    VARIANTARG* rgvarg;
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
};

struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    PVOID pvReserved;
    HRESULT(STDAPICALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
    SCODE scode;
};

struct ITypeInfo;

struct IDispatch : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count,
                                                    LCID lcid, DISPID* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags,
                                             DISPPARAMS* parameters, VARIANT* result,
                                             EXCEPINFO* exception, UINT* argumentError) = 0;

protected:
    ~IDispatch() = default;
};

struct IEnumConnections;
struct IEnumConnectionPoints;
struct IConnectionPointContainer;

struct IConnectionPoint : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** container) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) = 0;

protected:
    ~IConnectionPoint() = default;
};

struct IConnectionPointContainer : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) = 0;

protected:
    ~IConnectionPointContainer() = default;
};

/// A BSTR carries its length in bytes in the four bytes before its first character and may hold
/// zeros; the null pointer is the empty text. The receiver frees it.
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);
void SysFreeString(BSTR text);

void VariantInit(VARIANTARG* variant);
HRESULT VariantClear(VARIANTARG* variant);
HRESULT VariantCopy(VARIANTARG* to, VARIANTARG* from);
/// Converts among the numeric types, VT_BOOL and VT_BSTR, in the invariant locale.
HRESULT VariantChangeType(VARIANTARG* to, VARIANTARG* from, USHORT flags, VARTYPE type);

/// Calls the function at `offset` bytes in the object's virtual table, or at address `offset`
/// when `object` is null, with arguments taken from the variants.
HRESULT DispCallFunc(void* object, ULONG_PTR offset, CALLCONV convention, VARTYPE returnType,
                     UINT count, VARTYPE* types, VARIANTARG** arguments, VARIANT* result);

inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
inline constexpr DWORD FORMAT_MESSAGE_MAX_WIDTH_MASK = 0xFF;
/// The system's text for an error, without line breaks; 0 when it has none.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* buffer,
                     DWORD size, void* arguments);

inline constexpr DWORD LOCALE_ALLOW_NEUTRAL_NAMES = 0x08000000;
/// The identifier of a locale name, compared without regard to case; 0 when it is unknown.
LCID LocaleNameToLCID(const WCHAR* name, DWORD flags);
