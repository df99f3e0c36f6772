#include "windows/ModalQueue.h"

#include <stdexcept>
#include <thread>

#include "DuiLib/UIMainQueue.h"
#include "tests/support/Protocol.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/SimpleMessageBox.h"

namespace {

using GlobalUtils::MessageBoxKind;
using testing::ElementsAre;
using testing::IsEmpty;

class ModalQueueTest : public ProgramTest {
  protected:
    // A request that notes its key.
    std::function<void()> Note(int key) {
        return [this, key] { shown_.push_back(key); };
    }
    // Runs what was handed to the main queue until now.
    static void RunQueue() {
        bool reached = false;
        DuiLib::UIMainQueue::getInstance()->dispatch([&reached] { reached = true; });
        EXPECT_TRUE(Input::PumpUntil([&reached] { return reached; }));
    }

    ModalQueue queue_;
    std::vector<int> shown_;
};

TEST_F(ModalQueueTest, ShowsNothingFromWithinTheCall) {
    queue_.Show(1, Note(1));
    EXPECT_THAT(shown_, IsEmpty());
    RunQueue();
    EXPECT_THAT(shown_, ElementsAre(1));
}

TEST_F(ModalQueueTest, ShowsDifferentKindsInTheirOrder) {
    for (const int key : {3, 1, 2})
        queue_.Show(key, Note(key));
    RunQueue();
    EXPECT_THAT(shown_, ElementsAre(3, 1, 2));
}

TEST_F(ModalQueueTest, OneThatWasShownMayBeShownAgain) {
    queue_.Show(1, Note(1));
    RunQueue();
    queue_.Show(1, Note(1));
    RunQueue();
    EXPECT_THAT(shown_, ElementsAre(1, 1));
}

TEST_F(ModalQueueTest, TheKindThatIsShownIsDroppedAndOthersComeOneAfterTheOther) {
    int depth = 0;
    queue_.Show(1, [&] {
        EXPECT_EQ(++depth, 1);
        shown_.push_back(1);
        queue_.Show(1, Note(10));
        queue_.Show(2, [&] {
            EXPECT_EQ(++depth, 1);
            shown_.push_back(2);
            queue_.Show(3, Note(30));
            RunQueue();
            --depth;
        });
        queue_.Show(3, Note(3));
        RunQueue();  // as a modal loop does
        EXPECT_THAT(shown_, ElementsAre(1));
        --depth;
    });
    RunQueue();
    EXPECT_THAT(shown_, ElementsAre(1, 2, 3));
}

TEST_F(ModalQueueTest, TakesRequestsFromManyThreads) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            for (int key = 0; key < 50; ++key)
                queue_.Show(thread * 100 + key, Note(thread * 100 + key));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    RunQueue();
    EXPECT_EQ(shown_.size(), 200U);
    for (int thread = 0; thread < 4; ++thread) {
        std::vector<int> own;
        for (const int key : shown_) {
            if (key / 100 == thread)
                own.push_back(key);
        }
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
    }
}

TEST_F(ModalQueueTest, AnExceptionDoesNotEndIt) {
    Expect("[L4] A modal window ended with an exception: no window(ModalQueue::Show)");
    queue_.Show(1, []() -> void { throw std::runtime_error("no window"); });
    queue_.Show(2, Note(2));
    RunQueue();
    queue_.Show(1, Note(1));
    RunQueue();
    EXPECT_THAT(shown_, ElementsAre(2, 1));
}

TEST_F(ModalQueueTest, WhatStillWaitsEndsWithTheQueue) {
    {
        ModalQueue queue;
        queue.Show(1, Note(1));
    }
    RunQueue();
    EXPECT_THAT(shown_, IsEmpty());
}

// --- message boxes of the settings window

std::wstring BoxText() {
    const HWND box = FindThreadWindow(L"MESSAGE BOX");
    auto* window = dynamic_cast<DuiLib::WindowImplBase*>(
        reinterpret_cast<DuiLib::CWindowWnd*>(GetWindowLongPtrW(box, GWLP_USERDATA)));
    return window ? window->PaintManager().FindControl(L"msgbox_content")->GetText() : L"";
}

class MessagesTest : public MainWindowTest {
  protected:
    static bool MaskIsVisible() { return Control(L"mask_control").IsVisible(); }
    // Waits for a box whose text holds `part` and presses its button.
    void AnswerBox(Script& script, const std::wstring& part) {
        script.When(
            "a box about " + std::string(part.begin(), part.end()),
            [part] { return BoxText().find(part) != std::wstring::npos; },
            [this, part] {
                seen_.push_back(part);
                EXPECT_TRUE(MaskIsVisible());
                Input::Activate(FindThreadWindow(L"MESSAGE BOX"));
                Input::Key(VK_RETURN);
            });
    }

    std::vector<std::wstring> seen_;
};

TEST_F(MessagesTest, EachKindSaysItsOwn) {
    const std::vector<std::pair<MessageBoxKind, const wchar_t*>> kinds = {
        {MessageBoxKind(0), L"This file"},  {MessageBoxKind(1), L"problem with the camera effects"},
        {MessageBoxKind(5), L"The camera"}, {MessageBoxKind(7), L"This picture"},
        {MessageBoxKind(8), L"This video"}, {MessageBoxKind(9), L"The camera effects couldn"}};
    Script script;
    for (const auto& [kind, part] : kinds)
        AnswerBox(script, part);
    script.Run([&] {
        for (const auto& [kind, part] : kinds)
            Window().ShowMessage(kind);
    });
    EXPECT_EQ(seen_.size(), kinds.size());
    EXPECT_FALSE(MaskIsVisible());
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
}

TEST_F(MessagesTest, TheSameKindDoesNotPileUp) {
    Script script;
    script.When(
        "the box comes", [] { return !BoxText().empty(); },
        [] {
            for (int i = 0; i < 20; ++i)
                Window().ShowMessage(MessageBoxKind::kCameraUnavailable);
        });
    AnswerBox(script, L"The camera");
    AnswerBox(script, L"This video");
    script.Run([] {
        for (int i = 0; i < 20; ++i)
            Window().ShowMessage(MessageBoxKind::kCameraUnavailable);
        Window().ShowMessage(MessageBoxKind::kVideoTooLarge);
    });
    EXPECT_THAT(seen_, ElementsAre(L"The camera", L"This video"));
    Input::Pump();
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
    EXPECT_TRUE(IsWindowEnabled(Window().GetHWND()));
}

TEST_F(MessagesTest, ComesFromTheHubAndFromOtherThreads) {
    Script script;
    AnswerBox(script, L"This picture");
    AnswerBox(script, L"problem with the camera effects");
    script.Run([] {
        std::thread([] {
            using Hub = KindNotifier<MessageBoxKind>;
            Hub::GetInstance().Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind::kImageTooLarge);
            Hub::GetInstance().Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind::kBackgroundGone);
        }).join();
        EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
    });
    EXPECT_EQ(seen_.size(), 2U);
}

TEST_F(MessagesTest, ANumberWithoutATextShowsNothing) {
    Script script;
    AnswerBox(script, L"This video");
    script.Run([] {
        Window().ShowMessage(MessageBoxKind(3));
        Window().ShowMessage(MessageBoxKind::kVideoTooLarge);
    });
    EXPECT_EQ(seen_.size(), 1U);
}

TEST_F(MessagesTest, QuittingWhileABoxIsShownEndsEverything) {
    Script script;
    script.When(
        "the box comes", [] { return !BoxText().empty(); },
        [] {
            Window().ShowMessage(MessageBoxKind::kVideoTooLarge);
            PostQuitMessage(0);
        });
    script.Run([] { Window().ShowMessage(MessageBoxKind::kCameraUnavailable); });
    EXPECT_TRUE(Input::TakeQuit());
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
}

TEST_F(MessagesTest, TheServicesResetEndsTheBoxToo) {
    Script script;
    script
        .When(
            "the box comes", [] { return !BoxText().empty(); },
            [] {
                Window().ShowMessage(MessageBoxKind::kVideoTooLarge);
                SendFromService(harness::Protocol::kNotificationCode, harness::Protocol::kResetSubCode);
            })
        .Wait("the box is gone", [] { return FindThreadWindow(L"MESSAGE BOX") == nullptr; });
    script.Run([] { Window().ShowMessage(MessageBoxKind::kCameraUnavailable); });
    EXPECT_TRUE(Input::TakeQuit());
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
}

TEST_F(MessagesTest, AfterTheWindowHasClosedNoBoxComes) {
    Window().ShowMessage(MessageBoxKind::kCameraUnavailable);
    Window().AskForDeletion(L"custom_background_btn_0");
    Window().ShowLimitNotice();
    DestroyWindow(Window().GetHWND());
    bool boxSeen = false;
    bool reached = false;
    DuiLib::UIMainQueue::getInstance()->dispatch([&reached] { reached = true; });
    Script script;
    script.Wait("the queue is empty", [&] {
        boxSeen = boxSeen || FindThreadWindow(L"MESSAGE BOX") || FindThreadWindow(L"Delete Double Check");
        if (boxSeen)
            PostQuitMessage(0);
        return reached;
    });
    script.Run();
    EXPECT_FALSE(boxSeen);
    Input::TakeQuit();
}

}  // namespace
