// The lines that the stand-in service prints.
#include "tools/service/EventJson.h"

#include <gtest/gtest.h>

#include "tools/service/JsonLine.h"

namespace {

using Kind = ServerEvent::Kind;
using Bytes = std::vector<std::uint8_t>;

ServerEvent Message(std::int32_t code, Bytes payload) {
    ServerEvent event{Kind::kMessage, 3, {}, {}};
    event.frame.slot = {0xCD0000, -1, code, 0, -1, 0, static_cast<std::int32_t>(payload.size())};
    event.frame.payload = std::move(payload);
    return event;
}

Bytes SwitchPayload() {
    Bytes payload{1, 0, 0, 0, 0, 0, 0xCD, 0, 12, 0, 0, 0};
    for (const char letter : std::string("LumiCameraUI")) {
        payload.push_back(static_cast<std::uint8_t>(letter));
        payload.push_back(0);
    }
    payload.insert(payload.end(), {1, 0, 0, 0});
    return payload;
}

TEST(EventJson, ComingAndGoing) {
    EXPECT_EQ(EventJson({Kind::kConnected, 1, {}, {}}), R"({"event":"connect","client":1})");
    EXPECT_EQ(EventJson({Kind::kDisconnected, 2, {}, {}}), R"({"event":"disconnect","client":2})");
    EXPECT_EQ(EventJson({Kind::kRefused, 2, {}, L"bad length"}),
              R"({"event":"refused","client":2,"reason":"bad length"})");
    ServerEvent hello{Kind::kHello, 1, {}, {}};
    hello.frame.clientId = 0xCE0000;
    EXPECT_EQ(EventJson(hello), R"({"event":"hello","client":1,"clientId":13500416})");
}

TEST(EventJson, Ping) {
    EXPECT_EQ(EventJson(Message(0x4B273B, {'1', 0})),
              R"({"event":"message","client":3,"destination":13434880,"subCode":-1,"code":4925243,"slot3":0,)"
              R"("slot4":-1,"slot5":0,"payloadLength":2,"text":"","flag":0,"reserved":0,"payload":"3100",)"
              R"("payloadText":"1"})");
}

TEST(EventJson, CameraSwitchRecord) {
    const std::string line = EventJson(Message(0x4B273C, SwitchPayload()));
    EXPECT_NE(line.find(R"("record":{"sender":13434880,"caller":"LumiCameraUI","value":1}})"), std::string::npos)
        << line;
    // Another code has no record, whatever it carries.
    EXPECT_EQ(EventJson(Message(0x4B273B, SwitchPayload())).find("record"), std::string::npos);
}

TEST(EventJson, DamagedRecordIsNoRecord) {
    for (std::size_t size = 0; size < SwitchPayload().size(); ++size) {
        Bytes payload = SwitchPayload();
        payload.resize(size);
        EXPECT_FALSE(DecodeSwitchRecord(payload)) << size;
    }
    Bytes payload = SwitchPayload();
    payload[0] = 2;
    EXPECT_FALSE(DecodeSwitchRecord(payload));
    payload = SwitchPayload();
    payload[11] = 0x40;
    EXPECT_FALSE(DecodeSwitchRecord(payload));
    payload = SwitchPayload();
    payload.insert(payload.end(), {0, 0});
    EXPECT_FALSE(DecodeSwitchRecord(payload));
}

TEST(EventJson, RecordNamesBeyondTheBasicPlane) {
    // U+1F600 as a pair, then a lone low surrogate.
    const Bytes payload{1, 0, 0, 0, 5, 0, 0, 0, 3, 0, 0, 0, 0x3D, 0xD8, 0x00, 0xDE, 0x00, 0xDC, 7, 0, 0, 0};
    const auto record = DecodeSwitchRecord(payload);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->caller, "\xF0\x9F\x98\x80\xEF\xBF\xBD");
    EXPECT_EQ(record->value, 7);
}

TEST(EventJson, PayloadTextOnlyWhenPrintable) {
    const auto hasText = [](Bytes payload) {
        return EventJson(Message(1, std::move(payload))).find("payloadText") != std::string::npos;
    };
    EXPECT_TRUE(hasText({'a', ' ', '~'}));
    EXPECT_TRUE(hasText({'a', 0}));
    EXPECT_FALSE(hasText({}));
    EXPECT_FALSE(hasText({0}));
    EXPECT_FALSE(hasText({'a', 0, 0}));
    EXPECT_FALSE(hasText({'a', 0x1F}));
    EXPECT_FALSE(hasText({0x7F}));
    EXPECT_FALSE(hasText({0x80}));
}

TEST(JsonString, EscapesWhatMustBe) {
    EXPECT_EQ(JsonString("plain /path"), R"("plain /path")");
    EXPECT_EQ(JsonString("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(JsonString(std::string_view("\0\n\t\x1F\x7F", 5)), R"("\u0000\u000a\u0009\u001f\u007f")");
    EXPECT_EQ(JsonString("\xC3\xA9"), "\"\xC3\xA9\"");
    EXPECT_EQ(JsonString("\xFF"), "\"\xEF\xBF\xBD\"");
    EXPECT_EQ(JsonString("\xC3"), "\"\xEF\xBF\xBD\"");
}

}  // namespace
