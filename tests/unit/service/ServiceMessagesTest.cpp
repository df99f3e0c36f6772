#include "service/link/ServiceMessages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <string>
#include <vector>

#include "service/SettingNames.h"
#include "service/link/IPCDataIO.h"

namespace {

std::vector<std::uint8_t> Bytes(const IPCDataIO& io) {
    return {io.Data(), io.Data() + io.Position()};
}

std::vector<int> Slots(const TagIPCMessageItem& item) {
    return {std::begin(item.slot), std::end(item.slot)};
}

// What camera services and older versions count on. Every other test takes it from the program's headers.
TEST(ServiceMessagesTest, TheContractsNamesAndNumbers) {
    using namespace ServiceMessages;
    EXPECT_STREQ(kPipeName, L"\\\\.\\Pipe\\iNotoraAssistant");
    EXPECT_EQ(kOwnClientId, 0xCE0000);
    EXPECT_EQ(kCameraServiceId, 0xCD0000);
    EXPECT_EQ(kSwitchStateReceiverId, 0xB20001);
    EXPECT_EQ(kSettingsChangedCode, 4925243);
    EXPECT_EQ(kSwitchStateCode, 4925244);
    EXPECT_EQ(kBackgroundGoneCode, 4925245);
    EXPECT_EQ(kNotificationCode, 141073);
    EXPECT_EQ(kResetSubCode, 0x40000);
    EXPECT_STREQ(SettingNames::kSystemKeyPath, L"SOFTWARE\\Velmora\\Quillon\\LumiCamera");
    EXPECT_STREQ(SettingNames::kKeyPath, L"\\SOFTWARE\\Velmora\\Quillon\\LumiCamera");
}

TEST(ServiceMessagesTest, ThePingSaysAlwaysTheSame) {
    const TagIPCMessageItem item = ServiceMessages::ChangePing();
    EXPECT_EQ(Slots(item), (std::vector<int>{0xCD0000, -1, 0x4B273B, 0, -1, 0, 2}));
    EXPECT_EQ(item.text, "");
    EXPECT_EQ(item.flag, 0);
    EXPECT_EQ(item.reserved, 0);
    EXPECT_EQ(std::string(static_cast<const char*>(item.data), 2), std::string("1\0", 2));
}

TEST(ServiceMessagesTest, TheSwitchStateMessageCarriesItsPayload) {
    const std::array<std::uint8_t, 3> payload{1, 2, 3};
    const TagIPCMessageItem item = ServiceMessages::SwitchStateMessage(payload.data(), 3);
    EXPECT_EQ(Slots(item), (std::vector<int>{0xB20001, -1, 0x4B273C, -1, -1, 0, 3}));
    EXPECT_EQ(item.data, payload.data());
    EXPECT_EQ(item.flag, 0);
    EXPECT_EQ(item.reserved, 0);
}

TEST(ServiceMessagesTest, ARecordIsFortyBytes) {
    IPCDataIO io;
    ASSERT_TRUE(ServiceMessages::WriteRecord(io, {.value = 1}));
    const std::vector<std::uint8_t> expected{1,   0, 0,   0, 0,   0, 0xCD, 0, 12,  0, 0,   0, 'L', 0,
                                             'u', 0, 'm', 0, 'i', 0, 'C',  0, 'a', 0, 'm', 0, 'e', 0,
                                             'r', 0, 'a', 0, 'U', 0, 'I',  0, 1,   0, 0,   0};
    EXPECT_EQ(Bytes(io), expected);
}

TEST(ServiceMessagesTest, ARecordOfASwitchThatIsOffEndsInZero) {
    IPCDataIO io;
    ASSERT_TRUE(ServiceMessages::WriteRecord(io, {.value = 0}));
    ASSERT_EQ(io.Position(), 40);
    EXPECT_EQ(io.Data()[36], 0);
}

TEST(ServiceMessagesTest, TextIsWrittenInCodeUnits) {
    IPCDataIO io;
    ASSERT_TRUE(ServiceMessages::WriteWideString(io, u"\u4e2d\U0001F600"));
    EXPECT_EQ(Bytes(io), (std::vector<std::uint8_t>{3, 0, 0, 0, 0x2D, 0x4E, 0x3D, 0xD8, 0x00, 0xDE}));
    IPCDataIO empty;
    ASSERT_TRUE(ServiceMessages::WriteWideString(empty, u""));
    EXPECT_EQ(Bytes(empty), (std::vector<std::uint8_t>{0, 0, 0, 0}));
}

TEST(ServiceMessagesTest, OfATextThatIsTooLongTheLengthIsWritten) {
    constexpr std::size_t kUnits = 0x40000000;
    // Address space only: not a byte of it is read.
    void* const space = mmap(nullptr, kUnits * 2, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(space, MAP_FAILED);
    IPCDataIO io;
    EXPECT_TRUE(ServiceMessages::WriteWideString(io, {static_cast<const char16_t*>(space), kUnits}));
    EXPECT_EQ(Bytes(io), (std::vector<std::uint8_t>{0, 0, 0, 0x40}));
    munmap(space, kUnits * 2);
}

TEST(ServiceMessagesTest, SaysWhenItCannotBeWritten) {
    IPCDataIO io(static_cast<IPCDataBuffer*>(nullptr));
    EXPECT_FALSE(ServiceMessages::WriteWideString(io, u"a"));
    EXPECT_FALSE(ServiceMessages::WriteRecord(io, {}));
}

}  // namespace
