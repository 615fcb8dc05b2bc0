#include <gmock/gmock.h>

#include "simulator/SimulatorFixture.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

constexpr LCID english = 1033;
constexpr LCID britishEnglish = 2057;
constexpr LCID german = 1031;
constexpr LCID austrian = 3079;
constexpr LCID french = 1036;
constexpr HRESULT notFound = protocolError(0x70C);

class TextsTest : public SimulatorFixture {
protected:
    TextsTest() { EXPECT_EQ(client.connect(), S_OK); }

    HRESULT eventText(const std::vector<BYTE>& types, const std::vector<BYTE>& data, LCID lcid,
                      ULONG id = 7) {
        return client.logger->GetEventText(pumpClassId, id, types.data(),
                                           static_cast<ULONG>(types.size()), data.data(),
                                           static_cast<ULONG>(data.size()), lcid, text.put());
    }

    Client client;
    ScopedBstr text;
};

TEST_F(TextsTest, FallBackToARelatedLanguageThenToEnglishThenToAny) {
    const struct {
        ULONG event;
        LCID lcid;
        const char* text;
    } events[] = {
        {7, german, "Druck {0} von {1}"},
        {7, austrian, "Druck {0} von {1}"},
        {7, french, "Pressure {0} of {1}"},
        {7, britishEnglish, "Pressure {0} of {1}"},
        {8, french, "Livello"},
        {20, english, ""},
    };
    for (const auto& [event, lcid, expected] : events) {
        EXPECT_EQ(eventText({}, {}, lcid, event), S_OK);
        EXPECT_EQ(text.utf8(), expected) << event << ' ' << lcid;
    }
    EXPECT_EQ(client.logger->GetEventClassName(pumpClassId, austrian, text.put()), S_OK);
    EXPECT_EQ(text.utf8(), "Pumpe");

    const struct {
        const char* source;
        LCID lcid;
        HRESULT result;
        const char* text;
    } sources[] = {
        {"Tank", austrian, S_OK, "Kessel"},
        {"Tank", french, S_FALSE, ""},
        {"Pipe", english, S_FALSE, ""},
        {"", english, S_FALSE, ""},
    };
    for (const auto& [source, lcid, result, expected] : sources) {
        EXPECT_EQ(client.logger->GetSourceName(ScopedBstr(source).get(), lcid, text.put()), result);
        EXPECT_EQ(text.utf8(), expected);
    }
    EXPECT_EQ(eventText({}, {}, english, 9), notFound);
    EXPECT_EQ(client.logger->GetEventClassName(GUID{}, english, text.put()), notFound);
    ComPtr<IZrDetailCollection> details;
    EXPECT_EQ(client.logger->GetDetails(pumpClassId, 9, english, details.put()), notFound);
    EXPECT_FALSE(details);
}

TEST_F(TextsTest, TakeTheirArgumentsFromABlockThatIsNotTrusted) {
    const struct {
        std::vector<BYTE> types;
        std::vector<BYTE> data;
        const char* text;  ///< null: refused
    } cases[] = {
        {{3, 0, 8, 0}, {0xFE, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 'o', 'k'}, "Pressure -2 of ok"},
        {{5, 0, 11, 0}, {0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0xFF, 0xFF}, "Pressure 0.5 of true"},
        {{20, 0, 21, 0},
         {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
          0xFF},
         "Pressure -1 of 18446744073709551615"},
        {{11, 0}, {0, 0}, "Pressure false of {1}"},
        {{8, 0}, {3, 0, 0, 0, '{', '1', '}'}, "Pressure {1} of {1}"},
        {{8, 0}, {2, 0, 0, 0, 0xC3, '('}, "Pressure \xEF\xBF\xBD( of {1}"},
        {{3}, {1, 0, 0, 0}, nullptr},                           // half a type
        {{3, 0}, {1, 0, 0}, nullptr},                           // half a value
        {{3, 0}, {1, 0, 0, 0, 0}, nullptr},                     // a byte too many
        {{}, {1}, nullptr},                                     // data without a type
        {{8, 0}, {3, 0, 0, 0, 'a', 'b'}, nullptr},              // a text longer than the data
        {{8, 0}, {0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b'}, nullptr},  //
        {{9, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, nullptr},            // no such type of argument
    };
    for (const auto& [types, data, expected] : cases) {
        EXPECT_EQ(eventText(types, data, english), expected ? S_OK : E_INVALIDARG);
        EXPECT_EQ(text.utf8(), expected ? expected : "");
    }
    EXPECT_EQ(
        client.logger->GetEventText(pumpClassId, 7, nullptr, 2, nullptr, 0, english, text.put()),
        E_INVALIDARG);
}

TEST_F(TextsTest, OfAnAlarmsArgumentsMatchItsBlock) {
    EXPECT_EQ(client.advise(), S_OK);
    apply(
        "{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7,"
        " 'arguments': [12.25, 'b\u00e4r']}");
    client.sink.waitFor(1);
    const auto alarm = client.sink.alarms()[0];
    ArgumentBlockLayout layout{};
    const auto arguments = alarm.query<IZrEventArguments>();
    EXPECT_EQ(arguments->GetLayout(&layout), S_OK);
    std::vector<BYTE> block(static_cast<std::size_t>(layout.typesSize + layout.dataSize));
    EXPECT_EQ(arguments->GetBlock(block.data(), static_cast<ULONG>(block.size())), S_OK);
    const auto data = block.begin() + layout.dataOffset;
    EXPECT_EQ(eventText({block.begin(), data}, {data, block.end()}, german), S_OK);
    EXPECT_EQ(text.utf8(), "Druck 12.25 von b\xC3\xA4r");

    ULONG count = 0;
    EXPECT_EQ(alarm->get_ArgumentCount(&count), S_OK);
    EXPECT_EQ(count, 2u);
    VARIANT argument;
    EXPECT_EQ(alarm->get_Argument(0, &argument), S_OK);
    EXPECT_EQ(argument.vt, VT_R8);
    EXPECT_EQ(argument.dblVal, 12.25);
    EXPECT_EQ(alarm->get_Argument(1, &argument), S_OK);
    EXPECT_EQ(argument.vt, VT_BSTR);
    EXPECT_EQ(toUtf8(Utf16View(argument.bstrVal, SysStringLen(argument.bstrVal))), "b\xC3\xA4r");
    VariantClear(&argument);
    EXPECT_EQ(alarm->get_Argument(2, &argument), DISP_E_BADINDEX);
}

TEST_F(TextsTest, TellCausesRemediesAndDetails) {
    ComPtr<IZrCauseRemedyCollection> entries;
    EXPECT_EQ(client.logger->GetCauseRemedy(pumpClassId, 7, german, entries.put()), S_OK);
    ULONG count = 0;
    EXPECT_EQ(entries->get_Count(&count), S_OK);
    std::vector<std::string> texts;
    for (ULONG i = 0; i < count; ++i) {
        ComPtr<IZrCauseRemedy> entry;
        EXPECT_EQ(entries->get_Item(i, entry.put()), S_OK);
        for (const auto get :
             {&IZrCauseRemedy::get_Id, &IZrCauseRemedy::get_Cause, &IZrCauseRemedy::get_Remedy}) {
            EXPECT_EQ((entry.get()->*get)(text.put()), S_OK);
            texts.push_back(text.utf8());
        }
    }
    EXPECT_THAT(texts, testing::ElementsAre("C1", "Leak", "Seal", "C2", "Ventil", ""));

    ComPtr<IZrDetailCollection> details;
    EXPECT_EQ(client.logger->GetDetails(pumpClassId, 7, english, details.put()), S_OK);
    ComPtr<IZrDetail> detail;
    EXPECT_EQ(details->get_Item(0, detail.put()), S_OK);
    texts.clear();
    for (const auto get : {&IZrDetail::get_Key, &IZrDetail::get_Text, &IZrDetail::get_Comment}) {
        EXPECT_EQ((detail.get()->*get)(text.put()), S_OK);
        texts.push_back(text.utf8());
    }
    EXPECT_THAT(texts, testing::ElementsAre("part", "P-7", "left"));
    EXPECT_EQ(client.logger->GetDetails(pumpClassId, 8, english, details.put()), S_OK);
    EXPECT_EQ(details->get_Count(&count), S_OK);
    EXPECT_EQ(count, 0u);
}

}  // namespace
