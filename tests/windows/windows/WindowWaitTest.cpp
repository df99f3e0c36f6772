// Files that hang: the settings window answers other programs all the time, shows that it works, and can be closed.
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <thread>

#include "DuiLib/OptionUI.h"
#include "DuiLib/UICulture.h"
#include "tests/windows/support/HangingDecoder.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

constexpr wchar_t kAddButton[] = L"custom_background_btn";
constexpr wchar_t kRing[] = L"custom_working";

// Another program that asks the window ten times a second whether it is there.
class Asker {
  public:
    explicit Asker(HWND window) : thread_([this, window] { Ask(window); }) {}
    ~Asker() {
        stop_ = true;
        // The window's thread still answers.
        EXPECT_TRUE(Input::PumpUntil([this] { return ended_.load(); }));
        thread_.join();
        EXPECT_GT(answers_, 0);
        EXPECT_EQ(refusals_, 0);
        std::cout << answers_ << " answers of the window, the slowest after " << worstMs_ << " ms" << std::endl;
    }
    int Answers() const { return answers_; }

  private:
    void Ask(HWND window) {
        using Clock = std::chrono::steady_clock;
        while (!stop_) {
            const auto start = Clock::now();
            DWORD_PTR result = 0;
            ++(SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 5000, &result) ? answers_ : refusals_);
            worstMs_ = std::max(worstMs_, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
            Sleep(100);
        }
        ended_ = true;
    }

    std::atomic<bool> stop_ = false, ended_ = false;
    std::atomic<int> answers_ = 0, refusals_ = 0;
    double worstMs_ = 0;  // the thread's until it has ended
    std::thread thread_;
};

class WindowWaitTest : public MainWindowTest {
  protected:
    void TearDown() override {
        for (const wchar_t* name : {L"custom_background_btn_0", L"custom_background_btn_1"})
            HomeService::GetInstance()->DeleteCustomBackground(name);
        MainWindowTest::TearDown();
    }

    static std::wstring Picture() {
        constexpr std::array<unsigned char, 70> kBitmap = {'B', 'M', 70, 0, 0, 0, 0, 0, 0,  0, 54, 0, 0,
                                                           0,   40,  0,  0, 0, 2, 0, 0, 0,  2, 0,  0, 0,
                                                           1,   0,   24, 0, 0, 0, 0, 0, 16, 0, 0,  0};
        const std::wstring path = OwnFolder() + L"slow.bmp";
        std::ofstream(path.c_str(), std::ios::binary)
            .write(reinterpret_cast<const char*>(kBitmap.data()), kBitmap.size());
        return path;
    }
    static std::wstring SpokenName() { return Control(kAddButton).GetAccessibleInfo().name; }
    // The dot that has another colour than the rest; -1 for none.
    static int DarkDot() {
        std::array<DWORD, 8> colors{};
        for (std::size_t dot = 0; dot < colors.size(); ++dot)
            colors[dot] = Control(L"custom_working_" + std::to_wstring(dot)).GetBkColor();
        for (std::size_t dot = 0; dot < colors.size(); ++dot) {
            if (std::ranges::count(colors, colors[dot]) == 1)
                return static_cast<int>(dot);
        }
        return -1;
    }
    static bool RingIsShown() { return Control(kRing).IsVisible(); }
    static bool HasItem(int number) {
        return Manager().FindControl(L"custom_background_btn_" + std::to_wstring(number)) != nullptr;
    }
};

TEST_F(WindowWaitTest, AFileThatHangsShowsThatItIsWorkedOnAndTheWindowAnswers) {
    const std::wstring usualName = SpokenName();
    EXPECT_FALSE(RingIsShown());
    const Asker asker(Window().GetHWND());
    HangingDecoder decoder;
    int answersBefore = 0;
    Script script;
    script.When("the ring is shown", &RingIsShown, [&] {
        EXPECT_EQ(DarkDot(), 0);
        EXPECT_EQ(SpokenName(), DuiLib::UICulture::GetInstance()->GetString(L"IDS_LUMI_ACC_ADDING"));
        EXPECT_FALSE(Control(kAddButton).IsEnabled());
        answersBefore = asker.Answers();
    });
    script.Wait("it turns", [] { return DarkDot() == 3; });
    script.Wait("and goes round", [] { return DarkDot() == 1; });
    script.When(
        "the window answers", [&] { return asker.Answers() > answersBefore + 3; },
        [] {
            EXPECT_EQ(HangingDecoder::Inside(), 1);
            HangingDecoder::LetGo();
        });
    script.Run([&] { Home().AddDroppedFiles({Picture()}); });
    EXPECT_FALSE(RingIsShown());
    EXPECT_EQ(SpokenName(), usualName);
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
    EXPECT_TRUE(HasItem(0));
}

TEST_F(WindowWaitTest, MeanwhileTheUsersOwnAreLeftAloneAndTheRestWorks) {
    Home().AddDroppedFiles({Picture()});
    ASSERT_TRUE(HasItem(0));
    HomeService::GetInstance()->SelectBackground(L"none_background_btn");
    Write(L"lumi_camera_eye_correction", 0);
    HangingDecoder decoder;
    Script script;
    script.When("the ring is shown", &RingIsShown, [] {
        Manager().SendNotify(&Control(L"custom_background_btn_0"), DuiLib::NotifyType::kClick);
        EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 0);
        Manager().SendNotify(&Control(L"custom_background_btn_0_del"), DuiLib::NotifyType::kClick);
        Home().AddDroppedFiles({Picture()});
        Manager().SendNotify(&Control(L"correct_sight_btn"), DuiLib::NotifyType::kClick);
        EXPECT_EQ(Number(L"lumi_camera_eye_correction"), 1);
        HangingDecoder::LetGo();
    });
    script.Run([&] { Home().AddDroppedFiles({Picture()}); });
    Input::Pump();
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr) << "no question about a deletion";
    EXPECT_TRUE(HasItem(0));
    EXPECT_TRUE(HasItem(1));
    EXPECT_FALSE(HasItem(2));
}

TEST_F(WindowWaitTest, TheWindowCanBeClosedMeanwhile) {
    HangingDecoder decoder;
    Script script;
    script.When("the ring is shown", &RingIsShown, [] { Input::Click(Control(L"closebtn")); });
    script.Run([&] { Home().AddDroppedFiles({Picture(), Picture()}); });
    EXPECT_FALSE(Exists());
    EXPECT_EQ(HangingDecoder::Inside(), 1) << "nothing further is begun";
    EXPECT_FALSE(HasItem(0));
    EXPECT_TRUE(Input::TakeQuit()) << "the program's loop ends too";
    EXPECT_THAT(LogOf("RunWhilePainting"),
                testing::ElementsAre("[L3] The program ends before the work(RunWhilePainting)"));
    EXPECT_EQ(FindThreadWindow(L"MESSAGE BOX"), nullptr);
}

}  // namespace
