// What the windows ask of the system when they start, and how a second start finds them.
#include "windows/WindowStart.h"

#include <pathcch.h>
#include <shellscalingapi.h>
#include <wtsapi32.h>

#include "DuiLib/UICulture.h"
#include "tests/support/FoundFunction.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/PxDialogWnd.h"

namespace {

using harness::ImportHook;
using testing::ElementsAre;
using testing::IsEmpty;

// --- DPI awareness

HRESULT g_awareness = S_OK;
std::vector<int> g_awarenessAsked;

HRESULT WINAPI SetAwareness(PROCESS_DPI_AWARENESS awareness) {
    g_awarenessAsked.push_back(awareness);
    return g_awareness;
}

class WindowStartTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        g_awareness = S_OK;
        g_awarenessAsked.clear();
    }
    void TearDown() override {
        SetCurrentDirectoryW(ProgramFolder().c_str());
        DuiLib::UICulture::GetInstance()->SetValuesFolder(ProgramFolder() + L"res\\values\\");
        ProgramTest::TearDown();
    }
    static std::wstring CurrentFolder() {
        wchar_t folder[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, folder);
        return std::wstring(folder) + L"\\";
    }
};

TEST_F(WindowStartTest, AsksForTheAwarenessOfEachMonitor) {
    const ImportHook hook(nullptr, "SetProcessDpiAwareness", &SetAwareness);
    WindowStart::MakeDpiAware(L"PxMainWnd");
    EXPECT_THAT(g_awarenessAsked, ElementsAre(PROCESS_PER_MONITOR_DPI_AWARE));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WindowStartTest, ARefusedAwarenessIsTold) {
    const ImportHook hook(nullptr, "SetProcessDpiAwareness", &SetAwareness);
    for (const HRESULT refused : {E_ACCESSDENIED, S_FALSE}) {
        g_awareness = refused;
        WindowStart::MakeDpiAware(L"PxDialogWnd");
    }
    EXPECT_THAT(Log(), ElementsAre("[L3] SetProcessDpiAwareness fail, error code: -2147024891(PxDialogWnd::DPIAware)",
                                   "[L3] SetProcessDpiAwareness fail, error code: 1(PxDialogWnd::DPIAware)"));
}

// --- paths

DWORD WINAPI NoModuleName(HMODULE, LPWSTR, DWORD) {
    return 0;
}
DWORD WINAPI TooLongAModuleName(HMODULE, LPWSTR path, DWORD size) {
    path[size - 1] = 0;
    return size;
}
HRESULT WINAPI RefuseToRemove(PWSTR, size_t) {
    return E_FAIL;
}
HRESULT WINAPI RefuseToAppend(PWSTR, size_t, PCWSTR) {
    return E_FAIL;
}

TEST_F(WindowStartTest, TheProgramsFolderBecomesTheCurrentOne) {
    SetCurrentDirectoryW(OwnFolder().c_str());
    ASSERT_NE(CurrentFolder(), ProgramFolder());
    DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    culture.SetValuesFolder(OwnFolder());
    WindowStart::SetValuePath(L"PxMainWnd");
    EXPECT_EQ(CurrentFolder(), ProgramFolder());
    EXPECT_TRUE(culture.SelectLanguage(L"en_US", true)) << "the string tables are found again";
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WindowStartTest, WithoutAModulePathItIsTold) {
    constexpr char kLine[] = "[L4] Fail to get current module path!(PxMainWnd::SetValuePath)";
    Expect(kLine);
    SetCurrentDirectoryW(OwnFolder().c_str());
    const std::wstring before = CurrentFolder();
    {
        const ImportHook hook(nullptr, "GetModuleFileNameW", &NoModuleName);
        WindowStart::SetValuePath(L"PxMainWnd");
    }
    {
        const ImportHook hook(nullptr, "GetModuleFileNameW", &TooLongAModuleName);
        WindowStart::SetValuePath(L"PxMainWnd");
    }
    {
        const ImportHook hook(nullptr, "PathCchRemoveFileSpec", &RefuseToRemove);
        WindowStart::SetValuePath(L"PxMainWnd");
    }
    EXPECT_THAT(Log(), ElementsAre(kLine, kLine, kLine));
    EXPECT_EQ(CurrentFolder(), before);
}

TEST_F(WindowStartTest, APathThatCannotBeAppendedIsTold) {
    constexpr char kLine[] = "[L4] Path append res fail!(PxDialogWnd::SetValuePath)";
    Expect(kLine);
    SetCurrentDirectoryW(OwnFolder().c_str());
    const ImportHook hook(nullptr, "PathCchAppend", &RefuseToAppend);
    WindowStart::SetValuePath(L"PxDialogWnd");
    EXPECT_THAT(Log(), ElementsAre(kLine));
    EXPECT_EQ(CurrentFolder(), ProgramFolder()) << "that comes before";
}

// --- the session

std::vector<std::pair<HWND, DWORD>> g_registered;

BOOL WINAPI Register(HWND window, DWORD flags) {
    g_registered.emplace_back(window, flags);
    return TRUE;
}

TEST_F(MainWindowTest, IsRegisteredForTheNewsOfItsSession) {
    Destroy();
    g_registered.clear();
    const harness::FoundFunction hook("WTSRegisterSessionNotification", &Register);
    MainWindow window;
    window.Open(GetModuleHandleW(nullptr));
    EXPECT_THAT(g_registered, ElementsAre(std::pair(window.GetHWND(), DWORD{NOTIFY_FOR_THIS_SESSION})));
    DestroyWindow(window.GetHWND());
    Input::TakeQuit();
}

HWND WINAPI FindStranger(LPCWSTR, LPCWSTR) {
    return GetDesktopWindow();
}

HWND WINAPI FindNobody(LPCWSTR, LPCWSTR) {
    return nullptr;
}

TEST_F(MainWindowTest, AStrangersWindowHearsNothingOfTheSessionInItsPlace) {
    DWORD process = 0;
    GetWindowThreadProcessId(GetDesktopWindow(), &process);
    ASSERT_NE(process, GetCurrentProcessId());
    Destroy();
    for (const auto find : {&FindStranger, &FindNobody}) {
        g_registered.clear();
        MainWindow window;
        {
            const harness::FoundFunction hook("WTSRegisterSessionNotification", &Register);
            const ImportHook stranger(nullptr, "FindWindowW", find);
            window.Open(GetModuleHandleW(nullptr));
        }
        EXPECT_THAT(g_registered, ElementsAre(std::pair(window.GetHWND(), DWORD{NOTIFY_FOR_THIS_SESSION})));
        DestroyWindow(window.GetHWND());
        Input::TakeQuit();
    }
}

BOOL WINAPI RefuseToRegister(HWND, DWORD) {
    SetLastError(RPC_S_INVALID_BINDING);
    return FALSE;
}

TEST_F(MainWindowTest, ASessionThatTellsNothingIsLogged) {
    Destroy();
    const harness::FoundFunction hook("WTSRegisterSessionNotification", &RefuseToRegister);
    MainWindow window;
    window.Open(GetModuleHandleW(nullptr));
    EXPECT_TRUE(IsWindowVisible(window.GetHWND()));
    EXPECT_THAT(LogOf("PxMainWnd::RegisterForSession"),
                ElementsAre("[L3] no session notifications, error code: 1702(PxMainWnd::RegisterForSession)"));
    DestroyWindow(window.GetHWND());
    Input::TakeQuit();
}

// --- no window

HWND WINAPI NoWindow(DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE, LPVOID) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

TEST_F(MainWindowTest, WithoutAWindowTheRunEnds) {
    Destroy();
    const std::string line = "[L4] No window, error code: 8(CWindowWnd::Create)";
    Expect(line);
    const ImportHook hook(GetModuleHandleW(L"DuiLib.dll"), "CreateWindowExW", &NoWindow);
    {
        MainWindow window;
        window.Run(GetModuleHandleW(nullptr));
        EXPECT_EQ(window.GetHWND(), nullptr);
    }
    PxDialogWnd dialog;
    dialog.Run(GetModuleHandleW(nullptr));
    dialog.SetMessageText(L"nobody reads it");
    EXPECT_EQ(dialog.GetHWND(), nullptr);
    EXPECT_EQ(harness::TestLog::Count(line), 2) << "and nothing else is tried";
    Input::TakeQuit();
}

TEST_F(MainWindowTest, EachWindowTellsWhoseStartHasFailed) {
    Destroy();
    Expect("[L4] Path append res fail!(PxMainWnd::SetValuePath)");
    Expect("[L4] Path append res fail!(PxDialogWnd::SetValuePath)");
    Expect("[L4] No window, error code: 8(CWindowWnd::Create)");
    g_awareness = E_ACCESSDENIED;
    const ImportHook awareness(nullptr, "SetProcessDpiAwareness", &SetAwareness);
    const ImportHook append(nullptr, "PathCchAppend", &RefuseToAppend);
    const ImportHook create(GetModuleHandleW(L"DuiLib.dll"), "CreateWindowExW", &NoWindow);
    const auto counts = [] {
        std::vector<std::size_t> lines;
        for (const char* const name :
             {"PxMainWnd::DPIAware", "PxMainWnd::SetValuePath", "PxDialogWnd::DPIAware", "PxDialogWnd::SetValuePath"}) {
            lines.push_back(LogOf(name).size());
        }
        return lines;
    };
    const std::size_t fixtures = counts().front();
    MainWindow window;
    window.Run(GetModuleHandleW(nullptr));
    EXPECT_THAT(counts(), ElementsAre(fixtures + 1, 1U, 0U, 0U));
    PxDialogWnd dialog;
    dialog.Run(GetModuleHandleW(nullptr));
    EXPECT_THAT(counts(), ElementsAre(fixtures + 1, 1U, 1U, 1U));
    g_awareness = S_OK;
    Input::TakeQuit();
}

std::vector<BOOL> g_visibleWhileRead;
const ImportHook* g_readAhead = nullptr;

void ReadAhead(DuiLib::CPaintManagerUI* manager) {
    g_visibleWhileRead.push_back(IsWindowVisible(manager->GetPaintWindow()));
    g_readAhead->Original<void (*)(DuiLib::CPaintManagerUI*)>()(manager);
}

TEST_F(MainWindowTest, ItsPicturesAreReadWhileItIsMade) {
    Destroy();
    const ImportHook hook(nullptr, "CPaintManagerUI17ReadPicturesAhead", &ReadAhead);
    g_readAhead = &hook;
    g_visibleWhileRead.clear();
    MainWindow window;
    window.Open(GetModuleHandleW(nullptr));
    EXPECT_THAT(g_visibleWhileRead, ElementsAre(FALSE)) << "before it is shown, and once";
    DestroyWindow(window.GetHWND());
    Input::TakeQuit();
}

// Only its own window can pass a lock on to its pages.
TEST_F(MainWindowTest, IsRegisteredItselfThoughAStrangersWindowIsFound) {
    Destroy();
    WNDCLASSW description = {};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(L"kernel32.dll");  // classes are known by name and module
    description.lpszClassName = L"Camera";
    ASSERT_NE(RegisterClassW(&description), 0);
    const HWND stranger = CreateWindowExW(WS_EX_TOPMOST, L"Camera", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr,
                                          description.hInstance, nullptr);
    ASSERT_NE(stranger, nullptr);
    ASSERT_EQ(FindWindowW(L"Camera", nullptr), stranger);
    g_registered.clear();
    {
        const harness::FoundFunction hook("WTSRegisterSessionNotification", &Register);
        MainWindow window;
        window.Open(GetModuleHandleW(nullptr));
        EXPECT_THAT(g_registered, ElementsAre(std::pair(window.GetHWND(), DWORD{NOTIFY_FOR_THIS_SESSION})));
        DestroyWindow(window.GetHWND());
    }
    DestroyWindow(stranger);
    UnregisterClassW(L"Camera", description.hInstance);
    Input::TakeQuit();
}

BOOL WINAPI RefuseAndCount(HWND window, DWORD flags) {
    g_registered.emplace_back(window, flags);
    return FALSE;
}

std::vector<HWND> g_unregistered;

BOOL WINAPI Unregister(HWND window) {
    g_unregistered.push_back(window);
    return TRUE;
}

TEST_F(MainWindowTest, ARegistrationThatIsRefusedIsTriedOnceMore) {
    Destroy();
    g_registered.clear();
    g_unregistered.clear();
    const harness::FoundFunction hook("WTSRegisterSessionNotification", &RefuseAndCount);
    const harness::FoundFunction end("WTSUnRegisterSessionNotification", &Unregister);
    MainWindow window;
    window.Open(GetModuleHandleW(nullptr));
    const HWND handle = window.GetHWND();
    EXPECT_EQ(g_registered.size(), 1U) << "not at once";
    EXPECT_TRUE(Input::PumpUntil([] { return g_registered.size() == 2; }));
    EXPECT_EQ(g_registered.back(), std::pair(handle, DWORD{NOTIFY_FOR_THIS_SESSION}));
    EXPECT_THAT(g_unregistered, IsEmpty());
    DestroyWindow(handle);
    EXPECT_THAT(g_unregistered, ElementsAre(handle));
    Input::TakeQuit();
}

TEST_F(MainWindowTest, StartsInItsFolderAndAwareOfItsMonitor) {
    Destroy();
    g_awareness = S_OK;
    g_awarenessAsked.clear();
    SetCurrentDirectoryW(OwnFolder().c_str());
    const ImportHook hook(nullptr, "SetProcessDpiAwareness", &SetAwareness);
    MainWindow window;
    window.Open(GetModuleHandleW(nullptr));
    EXPECT_THAT(g_awarenessAsked, ElementsAre(PROCESS_PER_MONITOR_DPI_AWARE));
    wchar_t folder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, folder);
    EXPECT_EQ(std::wstring(folder) + L"\\", ProgramFolder());
    DestroyWindow(window.GetHWND());
    Input::TakeQuit();
}

// --- a second start

HWND g_front = nullptr;
decltype(&SetForegroundWindow) g_bringToFront = nullptr;

BOOL WINAPI BringToFront(HWND window) {
    g_front = window;
    return g_bringToFront(window);
}

TEST_F(MainWindowTest, ASecondStartBringsTheBoxThatStandsOverItToTheFront) {
    const auto box = [] { return FindThreadWindow(L"MESSAGE BOX"); };
    HWND elsewhere = nullptr;
    Script script;
    script
        .When(
            "the box is shown", [&] { return box() != nullptr; },
            [&] {
                // Somebody else's window takes the front.
                elsewhere = CreateWindowExW(0, L"STATIC", L"elsewhere", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                            nullptr, nullptr, nullptr);
                SetForegroundWindow(elsewhere);
            })
        .When(
            "the other window is in front", [&] { return GetForegroundWindow() == elsewhere; },
            [&] {
                // Asked for itself: it is not left to the window below to give the front on.
                const ImportHook hook(nullptr, "SetForegroundWindow", &BringToFront);
                g_bringToFront = hook.Original<decltype(&SetForegroundWindow)>();
                Window().ActivateExisting();
                EXPECT_EQ(g_front, box());
            })
        .When(
            "the box is in front", [&] { return GetForegroundWindow() == box(); }, [] { Input::Key(VK_ESCAPE); })
        .Wait("the box is gone", [&] { return box() == nullptr; });
    script.Run([] { Window().ShowMessage(GlobalUtils::MessageBoxKind::kFileUnreadable); });
    DestroyWindow(elsewhere);
}

TEST_F(WindowStartTest, WithoutAWindowASecondStartDoesNothing) {
    const HWND before = GetForegroundWindow();
    WindowStart::ActivateWindow(L"Nobody's class");
    EXPECT_EQ(GetForegroundWindow(), before);
}

// --- the page's host

TEST_F(MainWindowTest, PagesReachItsWindow) {
    EXPECT_NE(Window().GetHWND(), nullptr);
    EXPECT_EQ(static_cast<PageHost&>(Window()).GetWindow(), Window().GetHWND());
}

// --- the end

// A page whose memory tells whether somebody still speaks to it when it is gone.
class MortalPage : public PageBase {
  public:
    explicit MortalPage(DuiLib::CPaintManagerUI* manager)
        : PageBase(L"layout\\PixoraIntroductionPage.xml", L"IntroductionPage", manager) {}

    static inline int spokenToAfterwards = 0;

    static void* operator new(std::size_t size) { return ::operator new(size); }
    // The memory stays, with something in it that notices.
    static void operator delete(void* memory) { new (memory) Ghost; }

  private:
    class Ghost : public DuiLib::CNotifyPump {
      protected:
        const NotifyMap& GetMessageMap() const override {
            ++spokenToAfterwards;
            static const NotifyMap nothing;
            return nothing;
        }
    };
};

TEST_F(MainWindowTest, DestroyedWithItsWindowOpenItSpeaksToNoPageThatIsGone) {
    Destroy();
    MortalPage::spokenToAfterwards = 0;
    {
        MainWindow window;
        window.Open(GetModuleHandleW(nullptr));
        window.AddPage(L"IntroductionPage", std::make_unique<MortalPage>(&window.PaintManager()));
        window.ShowPage(L"IntroductionPage", 0);
        ASSERT_TRUE(Input::Activate(window.GetHWND()));
        window.PaintManager().UpdateLayout();
        DuiLib::CControlUI* const button = window.PaintManager().FindControl(L"back_btn");
        ASSERT_TRUE(button);
        Input::MoveTo(*button);
        window.PaintManager().SetFocus(button);
        ASSERT_EQ(window.PaintManager().GetFocus(), button);
    }
    EXPECT_EQ(MortalPage::spokenToAfterwards, 0);
    Input::TakeQuit();
}

}  // namespace
