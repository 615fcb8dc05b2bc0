// Prints what the platform's automation answers in a list of cases, for a comparison between
// systems. A line is a question and its answers, "question: name=answer name=answer".
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/Text.h"

namespace {

std::string hex(LONG bits) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(bits));
    return digits;
}

void print(const std::string& question, const std::string& answers) {
    std::printf("%s: %s\n", question.c_str(), answers.c_str());
}

VARIANT integer(VARTYPE type, LONGLONG value) {
    VARIANT made;
    VariantInit(&made);
    made.vt = type;
    made.llVal = value;
    return made;
}

VARIANT real(VARTYPE type, DOUBLE value) {
    VARIANT made = integer(type, 0);
    if (type == VT_R4)
        made.fltVal = static_cast<FLOAT>(value);
    else
        made.dblVal = value;
    return made;
}

VARIANT text(const char* utf8) {
    VARIANT made = integer(VT_BSTR, 0);
    made.bstrVal = newBstr(utf8);
    return made;
}

std::string describe(const VARIANT& value) {
    char number[32];
    switch (value.vt) {
        case VT_R4:
        case VT_R8:
            std::snprintf(number, sizeof number, "%.11g",
                          value.vt == VT_R4 ? static_cast<DOUBLE>(value.fltVal) : value.dblVal);
            return number;
        case VT_BSTR:
            return "'" + toUtf8({value.bstrVal, SysStringLen(value.bstrVal)}) + "'";
        default:
            return std::to_string(value.llVal);
    }
}

/// The result of a failure, or the value as a text.
std::string converted(VARIANT from, VARTYPE type) {
    VARIANT to = integer(VT_EMPTY, 0);
    HRESULT hr = VariantChangeType(&to, &from, 0, type);
    if (SUCCEEDED(hr))
        hr = VariantChangeType(&to, &to, 0, VT_BSTR);
    std::string answer = FAILED(hr) ? hex(hr) : describe(to);
    std::replace(answer.begin(), answer.end(), ' ', '_');
    VariantClear(&to);
    return answer;
}

void printConversions(VARIANT from) {
    const std::pair<const char*, VARTYPE> targets[] = {
        {"I1", VT_I1},  {" UI1", VT_UI1}, {" I2", VT_I2}, {" I4", VT_I4},     {" UI4", VT_UI4},
        {" I8", VT_I8}, {" R4", VT_R4},   {" R8", VT_R8}, {" BOOL", VT_BOOL}, {" BSTR", VT_BSTR}};
    std::string answers;
    for (const auto& [name, type] : targets)
        answers += name + ("=" + converted(from, type));
    print("VT " + std::to_string(from.vt) + " " + describe(from), answers);
    VariantClear(&from);
}

void printConversions() {
    const std::pair<VARTYPE, LONGLONG> integers[] = {
        {VT_EMPTY, 0},   {VT_NULL, 0},   {VT_BOOL, VARIANT_TRUE}, {VT_I1, -1},        {VT_I2, -1},
        {VT_UI2, 65535}, {VT_I4, 256},   {VT_UI4, 0xFFFFFFFF},    {VT_I8, 1LL << 53}, {VT_UI8, -1},
        {VT_ERROR, 5},   {VT_UNKNOWN, 0}};
    const DOUBLE reals[] = {0.1, 2.5, -3.5, 127.5, 2147483647.5, 1e15, 1e300, -0.0};
    const char* const texts[] = {"",
                                 "12",
                                 " +5 ",
                                 "1e2",
                                 "0x10",
                                 "1,5",
                                 "12 bar",
                                 "inf",
                                 "1e400",
                                 "tRUE",
                                 "9223372036854775808"};
    for (const auto& [type, value] : integers)
        printConversions(integer(type, value));
    printConversions(real(VT_R4, 0.1));
    for (const DOUBLE value : reals)
        printConversions(real(VT_R8, value));
    for (const char* const utf8 : texts)
        printConversions(text(utf8));
}

void printVariants() {
    VARIANT unknownType = integer(0x7F, 0);
    VARIANT target = text("kept");
    const HRESULT copied = VariantCopy(&target, &unknownType);
    print("unknown type", "clear=" + hex(VariantClear(&unknownType)) + " copy=" + hex(copied) +
                              " target=" + converted(target, VT_BSTR));
    VARIANT copy = integer(VT_I4, 1);
    VariantCopy(&copy, &target);
    const bool separate = copy.bstrVal != target.bstrVal;
    print("copied text", "separate=" + std::to_string(separate) + " self=" +
                             hex(VariantCopy(&copy, &copy)) + " text=" + converted(copy, VT_BSTR));
    VariantClear(&copy);
    VariantClear(&target);
}

void printTexts() {
    const auto lengths = [](BSTR made) {
        const std::string answer = made ? std::to_string(SysStringLen(made)) + "," +
                                              std::to_string(SysStringByteLen(made)) + "," +
                                              std::to_string(made[SysStringLen(made)] == 0)
                                        : "null";
        SysFreeString(made);
        return answer;
    };
    print("BSTR", "none=" + lengths(SysAllocString(nullptr)) +
                      " empty=" + lengths(SysAllocString(OLESTR(""))) +
                      " zeros=" + lengths(SysAllocStringLen(OLESTR("a\0b"), 3)) +
                      " blank=" + lengths(SysAllocStringLen(nullptr, 7)) +
                      " huge=" + lengths(SysAllocStringLen(nullptr, 0x7FFFFFFF)) + " ofNull=" +
                      std::to_string(SysStringLen(nullptr) + SysStringByteLen(nullptr)));
}

LONG STDMETHODCALLTYPE count(SHORT factor, DOUBLE value, BSTR text) {
    return static_cast<LONG>(factor * value) + static_cast<LONG>(SysStringLen(text));
}

void printCalls() {
    VARIANT arguments[] = {integer(VT_I2, -3), real(VT_R8, 2.0), text("four")};
    VARTYPE types[] = {VT_I2, VT_R8, VT_BSTR};
    VARIANTARG* pointers[] = {&arguments[0], &arguments[1], &arguments[2]};
    const std::pair<const char*, VARTYPE> returns[] = {
        {"EMPTY", VT_EMPTY}, {"I2", VT_I2},       {"I4", VT_I4},
        {"UI4", VT_UI4},     {"ERROR", VT_ERROR}, {"HRESULT", VT_HRESULT}};
    for (const auto& [name, type] : returns) {
        VARIANT result = integer(VT_NULL, 0);
        const HRESULT hr = DispCallFunc(nullptr, reinterpret_cast<ULONG_PTR>(&count), CC_STDCALL,
                                        type, 3, types, pointers, &result);
        print(std::string("DispCallFunc ") + name,
              "result=" + hex(hr) + " type=" + std::to_string(result.vt) +
                  (type == VT_EMPTY ? "" : " value=" + std::to_string(result.iVal)));
    }
    VariantClear(&arguments[2]);
}

void printLocales() {
    const char* const names[] = {"de-DE",        "DE-de",      "en-029",     "ca-ES-valencia",
                                 "de-DE_phoneb", "zh-Hans-HK", "zh-Hant-TW", "kk-Cyrl-KZ",
                                 "la-001",       "qps-ploc",   "sr-Latn-CS", "hu-HU_tchncl",
                                 "de",           "eo",         "az-Latn",    "zh-CHS",
                                 "zh-cht",       "ns-ZA",      "ns",         "tl",
                                 "tl-PH",        "az-az",      "sr-sp",      "en_US",
                                 "sr-Latn_RS",   "zzz",        "xx-YY",      "de-",
                                 "de-DE "};
    const auto look = [](const char* name, DWORD flags) {
        return hex(static_cast<LONG>(LocaleNameToLCID(toUtf16(name).c_str(), flags)));
    };
    for (const char* name : names)
        print("locale '" + std::string(name) + "'",
              "identifier=" + look(name, LOCALE_ALLOW_NEUTRAL_NAMES));
    print("no neutral names", "specific=" + look("de-DE", 0) + " neutral=" + look("de", 0));
}

}  // namespace

int main() {
    printConversions();
    printVariants();
    printTexts();
    printCalls();
    printLocales();
}
