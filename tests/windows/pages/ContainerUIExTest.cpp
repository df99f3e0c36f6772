#include "pages/ContainerUIEx.h"

#include "tests/windows/pages/PageTests.h"

namespace {

using DuiLib::EventType;
using testing::ElementsAre;
using testing::IsEmpty;

class ContainerUIExTest : public PageTest, public DuiLib::INotifyUI {
  protected:
    void SetUp() override {
        PageTest::SetUp();
        auto container = std::make_unique<CContainerUIEx>();
        container_ = container.get();
        container->SetName(L"item");
        auto button = std::make_unique<DuiLib::CButtonUI>();
        button->SetName(L"button");
        button->SetFixedWidth(40);
        button->SetFixedHeight(40);
        container->Add(std::move(button));
        Host().Tabs()->Add(std::move(container));
        Manager().AddNotifier(this);
        Manager().UpdateLayout();
    }
    void TearDown() override {
        Manager().RemoveNotifier(this);
        PageTest::TearDown();
    }
    void Notify(DuiLib::TNotifyUI& msg) override {
        if (msg.sender)
            told_.push_back(msg.type + L" " + msg.sender->GetName());
    }
    void Send(EventType type) {
        DuiLib::TEventUI event{};
        event.type = type;
        container_->DoEvent(event);
    }

    CContainerUIEx* container_ = nullptr;
    std::vector<std::wstring> told_;
};

TEST_F(ContainerUIExTest, TellsWhenThePointerComesAndGoes) {
    Send(EventType::kMouseEnter);
    Send(EventType::kMouseLeave);
    EXPECT_THAT(told_, ElementsAre(L"mouseenter item", L"mouseleave item"));
}

TEST_F(ContainerUIExTest, OtherEventsTellNothing) {
    for (const EventType type :
         {EventType::kMouseMove, EventType::kButtonDown, EventType::kButtonUp, EventType::kCaptureLost})
        Send(type);
    EXPECT_THAT(told_, IsEmpty());
}

TEST_F(ContainerUIExTest, ItsChildrenBelongToIt) {
    Input::MoveTo(Control(L"button"));
    EXPECT_THAT(told_, ElementsAre(L"mouseenter item", L"mouseenter button"));
    told_.clear();
    // Onto the room beside the button: still on the container.
    const DuiLib::Rect& place = container_->GetPos();
    Input::MoveTo(Manager(), {place.right - 5, place.bottom - 5});
    EXPECT_THAT(told_, ElementsAre(L"mouseleave button"));
    told_.clear();
    Input::MoveTo(Control(L"minbtn"));
    EXPECT_THAT(told_, ElementsAre(L"mouseleave item", L"mouseenter minbtn"));
}

TEST_F(ContainerUIExTest, HasANameOfItsOwnForLayouts) {
    EXPECT_STREQ(container_->GetClass(), L"ContainerEx");
}

}  // namespace
