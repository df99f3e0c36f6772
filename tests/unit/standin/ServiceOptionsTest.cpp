// The words that the stand-in service understands.
#include "tools/service/ServiceOptions.h"

#include <gmock/gmock.h>

namespace {

using Kind = ServiceCommand::Kind;
using testing::ElementsAre;

std::optional<ServiceCommand> Parse(const std::string& line) {
    const std::vector<std::string> words = SplitWords(line);
    std::span<const std::string> left = words;
    auto command = TakeCommand(left);
    EXPECT_TRUE(!command || left.empty()) << line;
    return command;
}

std::optional<ServiceOptions> Options(const std::string& line) {
    std::string error;
    const auto options = ParseOptions(SplitWords(line), error);
    EXPECT_EQ(options.has_value(), error.empty()) << line;
    return options;
}

TEST(ServiceCommand, Messages) {
    EXPECT_THAT(Parse("changed")->Item().slot, ElementsAre(0xCE0000, -1, 0x4B273B, -1, -1, 0, 0));
    EXPECT_THAT(Parse("reset")->Item().slot, ElementsAre(0xCE0000, 0x40000, 0x22711, -1, -1, 0, 0));
    EXPECT_THAT(Parse("close")->Item().slot, ElementsAre(0xCE0000, 0x40000, 0x22711, -1, -1, 0, 0));
    EXPECT_THAT(Parse("message")->Item().slot, ElementsAre(0xCE0000, -1, 4925245, -1, -1, 0, 0));
    EXPECT_THAT(Parse("code 0x22711 7")->Item().slot, ElementsAre(0xCE0000, 7, 0x22711, -1, -1, 0, 0));
    EXPECT_THAT(Parse("code -3")->Item().slot, ElementsAre(0xCE0000, -1, -3, -1, -1, 0, 0));
}

TEST(ServiceCommand, Others) {
    const auto set = Parse("set camera_switch 0x1");
    ASSERT_TRUE(set);
    EXPECT_EQ(set->kind, Kind::kSet);
    EXPECT_EQ(set->valueName, "camera_switch");
    EXPECT_EQ(set->value, 1u);
    EXPECT_EQ(set->Item().slot[2], 0x4B273B);
    EXPECT_EQ(Parse("drop")->kind, Kind::kDrop);
    EXPECT_EQ(Parse("  quit\r")->kind, Kind::kQuit);
}

TEST(ServiceCommand, Nonsense) {
    for (const char* line : {"", "chang", "code", "code x", "set", "set a", "set a b", "CHANGED"}) {
        EXPECT_FALSE(Parse(line)) << line;
    }
}

TEST(ServiceCommand, Numbers) {
    EXPECT_EQ(ParseNumber("12"), 12);
    EXPECT_EQ(ParseNumber("-2147483648"), INT32_MIN);
    EXPECT_EQ(ParseNumber("4294967295"), -1);
    EXPECT_EQ(ParseNumber("0xFFFFFFFF"), -1);
    for (const char* word : {"", "-", "0x", "4294967296", "-2147483649", "1a", "0xG", "+1", "--1", " 1"}) {
        EXPECT_FALSE(ParseNumber(word)) << word;
    }
}

TEST(ServiceOptions, Defaults) {
    const auto options = Options("");
    ASSERT_TRUE(options);
    EXPECT_EQ(options->pipeName, R"(\\.\Pipe\iNotoraAssistant)");
    EXPECT_FALSE(options->untilEof || options->neverRead || options->garbage || options->halfFrame || options->help);
    EXPECT_EQ(options->dropAfter, 0);
    EXPECT_TRUE(options->commands.empty());
}

TEST(ServiceOptions, All) {
    const auto options = Options(
        R"(--pipe \\.\Pipe\x --until-eof --never-read --garbage --half-frame --drop-after 3 --help set a 2 code 5 close)");
    ASSERT_TRUE(options);
    EXPECT_EQ(options->pipeName, R"(\\.\Pipe\x)");
    EXPECT_TRUE(options->untilEof && options->neverRead && options->garbage && options->halfFrame && options->help);
    EXPECT_EQ(options->dropAfter, 3);
    ASSERT_EQ(options->commands.size(), 3u);
    EXPECT_EQ(options->commands[0].word, "set");
    EXPECT_EQ(options->commands[1].code, 5);
    EXPECT_EQ(options->commands[2].word, "close");
}

TEST(ServiceOptions, Nonsense) {
    for (const char* line : {"--pip x", "--pipe", "--drop-after", "--drop-after 0", "--drop-after x", "sing", "code"}) {
        EXPECT_FALSE(Options(line)) << line;
    }
}

}  // namespace
