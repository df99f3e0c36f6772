#include "tools/proof/TestList.h"

#include <gmock/gmock.h>

namespace proof {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kLine[] = "test\tapp_test\tbin\\app_test.exe\t-a b\twork\t300\tONE=1\tTWO=\n";

TEST(TestList, HoldsWhatItsLinesSay) {
    const auto list = ParseTestList("version\t1.2.3\r\n\n" + std::string(kLine) +
                                    "test\tother\tbin\\other.exe\t\t.\t1\nwithout\tscripts\tno scripts here\n"
                                    "step\t1. Look.\ta picture\n");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->version, "1.2.3");
    ASSERT_EQ(list->tests.size(), 2U);
    const ListedTest& test = list->tests[0];
    EXPECT_EQ(test.name, "app_test");
    EXPECT_EQ(test.program, "bin\\app_test.exe");
    EXPECT_EQ(test.arguments, "-a b");
    EXPECT_EQ(test.folder, "work");
    EXPECT_EQ(test.seconds, 300);
    EXPECT_THAT(test.environment, ElementsAre("ONE=1", "TWO="));
    EXPECT_THAT(list->tests[1].arguments, IsEmpty());
    EXPECT_THAT(list->tests[1].environment, IsEmpty());
    ASSERT_EQ(list->without.size(), 1U);
    EXPECT_EQ(list->without[0].what, "scripts");
    EXPECT_EQ(list->without[0].text, "no scripts here");
    ASSERT_EQ(list->steps.size(), 1U);
    EXPECT_EQ(list->steps[0].what, "1. Look.");
    EXPECT_EQ(list->steps[0].text, "a picture");
}

TEST(TestList, ADamagedOneIsNone) {
    for (const char* line :
         {"test\tapp_test\tbin\\app_test.exe\t\twork", "test\t\tprogram\t\twork\t300", "test\tname\t\t\twork\t300",
          "test\tname\tprogram\t\twork\t", "test\tname\tprogram\t\twork\t0", "test\tname\tprogram\t\twork\t-3",
          "test\tname\tprogram\t\twork\t3x", "test\tname\tprogram\t\twork\t100000",
          "test\tname\tprogram\t\twork\t3\tNOVALUE", "version", "version\t1\t2", "without\tname", "step\tname",
          "other\tname\ttext", "nothing"}) {
        EXPECT_FALSE(ParseTestList(std::string(kLine) + line + "\n")) << line;
    }
    EXPECT_TRUE(ParseTestList("test\tname\tprogram\t\twork\t99999\n"));
}

TEST(TestList, WordsChoose) {
    const auto whole =
        ParseTestList("test\tapp_test\ta\t\t.\t1\ntest\te2e_Preview\ta\t\t.\t1\ntest\tpreview\ta\t\t.\t1\n");
    ASSERT_TRUE(whole);
    const auto chosen = [&](const std::vector<std::string>& words) {
        TestList list = *whole;
        Choose(list, words);
        std::vector<std::string> names;
        for (const ListedTest& test : list.tests) {
            names.push_back(test.name);
        }
        return names;
    };
    EXPECT_THAT(chosen({}), ElementsAre("app_test", "e2e_Preview", "preview"));
    EXPECT_THAT(chosen({"review"}), ElementsAre("e2e_Preview", "preview"));
    EXPECT_THAT(chosen({"app", "e2e"}), ElementsAre("app_test", "e2e_Preview"));
    EXPECT_THAT(chosen({"no such"}), IsEmpty());
}

}  // namespace
}  // namespace proof
