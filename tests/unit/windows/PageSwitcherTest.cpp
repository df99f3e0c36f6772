#include "windows/PageSwitcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PageSwitcherTest : public testing::Test {
  protected:
    PageSwitcherTest() {
        for (const wchar_t* name : {L"HomePage", L"IntroductionPage"})
            switcher_.Register(name, [this](const std::wstring& page) { shown_.push_back(page); });
    }

    PageSwitcher switcher_;
    std::vector<std::wstring> shown_;
};

TEST_F(PageSwitcherTest, ShowsThePageOfThatName) {
    EXPECT_TRUE(switcher_.Select(L"IntroductionPage", false));
    EXPECT_THAT(shown_, ElementsAre(L"IntroductionPage"));
    EXPECT_EQ(switcher_.Current(), L"IntroductionPage");
    EXPECT_TRUE(switcher_.Select(L"HomePage", false));
    EXPECT_THAT(shown_, ElementsAre(L"IntroductionPage", L"HomePage"));
    EXPECT_EQ(switcher_.Current(), L"HomePage");
}

TEST_F(PageSwitcherTest, AtFirstNoPageIsShown) {
    EXPECT_EQ(switcher_.Current(), L"");
    EXPECT_THAT(shown_, IsEmpty());
}

TEST_F(PageSwitcherTest, ThePageThatIsShownIsShownAgainOnlyOnDemand) {
    switcher_.Select(L"HomePage", false);
    EXPECT_TRUE(switcher_.Select(L"HomePage", false));
    EXPECT_THAT(shown_, ElementsAre(L"HomePage"));
    EXPECT_TRUE(switcher_.Select(L"HomePage", true));
    EXPECT_THAT(shown_, ElementsAre(L"HomePage", L"HomePage"));
}

TEST_F(PageSwitcherTest, AnUnknownNameChangesNothing) {
    switcher_.Select(L"HomePage", false);
    for (const wchar_t* name : {L"", L"homepage", L"HomePage "}) {
        EXPECT_FALSE(switcher_.Select(name, false));
        EXPECT_FALSE(switcher_.Select(name, true));
    }
    EXPECT_EQ(switcher_.Current(), L"HomePage");
    EXPECT_THAT(shown_, ElementsAre(L"HomePage"));
}

TEST_F(PageSwitcherTest, ASecondCallbackReplacesTheFirst) {
    int calls = 0;
    switcher_.Register(L"HomePage", [&calls](const std::wstring&) { ++calls; });
    switcher_.Select(L"HomePage", false);
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(shown_, IsEmpty());
}

TEST_F(PageSwitcherTest, ACallbackMaySwitchOn) {
    switcher_.Register(L"HomePage", [this](const std::wstring&) { switcher_.Select(L"IntroductionPage", false); });
    switcher_.Select(L"HomePage", false);
    EXPECT_EQ(switcher_.Current(), L"IntroductionPage");
    EXPECT_THAT(shown_, ElementsAre(L"IntroductionPage"));
}

}  // namespace
