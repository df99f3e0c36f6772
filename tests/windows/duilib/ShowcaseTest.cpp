// The layout that shows every control, at the usual scales and in both directions.
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

std::string FileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The data folder that the build puts beside the program.
std::filesystem::path DataFolder() {
    wchar_t path[MAX_PATH]{};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path() / "testdata" / "duilib";
}

class Showcase : public testing::Test {
  protected:
    Showcase() {
        for (const char* folder : {"drawable", "drawable-200"}) {
            std::filesystem::copy(
                DataFolder() / folder, std::filesystem::path(ResourceFolder::Get().Path()) / folder,
                std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
        }
    }
    const std::string layout = FileText(DataFolder() / "layout" / "showcase.xml");
};

TEST_F(Showcase, IsDrawnAtEveryScale) {
    ASSERT_FALSE(layout.empty());
    TestWindow window(layout);
    for (const int dpi : {96, 120, 144, 192, 288}) {
        const Picture picture = Render(window, dpi, L"showcase");
        // Each control has drawn something into its place.
        for (const wchar_t* name :
             {L"title", L"primary", L"plain", L"disabled", L"icon", L"switch", L"tab_one", L"frame", L"photo",
              L"slider", L"slider_plain", L"progress", L"html", L"wrapped", L"cut"}) {
            const Rect& px = window.Find(name).GetPos();
            EXPECT_FALSE(picture.InkWithin(px, picture.At({px.left, px.top})).IsEmpty())
                << testing::PrintToString(std::wstring(name)) << " at " << dpi;
        }
    }
}

TEST_F(Showcase, IsMirroredForRightToLeftLanguages) {
    const Direction direction(true);
    TestWindow window(layout);
    window.Find(L"title").SetText(L"إعدادات الكاميرا");
    window.Find(L"primary").SetText(L"تطبيق");
    window.Find(L"html").SetText(
        L"هذه الوظيفة <b>غير متاحة</b> على هذا الكمبيوتر. اقرأ <a href='https://a.example'>كيفية تحديث برنامج "
        L"التشغيل</a> الإصدار 10.2 من Windows، أو <a href='https://b.example'>اطلب المساعدة</a>.");
    window.Find(L"wrapped")
        .SetText(
            L"تنكسر أسطر النص حيث يلزم ذلك، ويتبع ارتفاعه عرضه، حتى لا يقطع أي شيء في أي لغة وبأي مقياس من المقاييس "
            L"المتاحة على هذا الجهاز.");
    Render(window, 144, L"showcase_rtl");
    EXPECT_GT(window.Find(L"primary").GetPos().left, window.Find(L"plain").GetPos().left);
    EXPECT_LT(window.Find(L"close").GetPos().right, window.Find(L"title").GetPos().left + 1);
}

TEST_F(Showcase, PaintingLeavesNoGdiObjects) {
    TestWindow window(layout);
    const auto paintAll = [&] {
        for (const int dpi : {96, 144, 192}) {
            Render(window, dpi);
        }
    };
    paintAll();
    const int before = GdiObjectCount();
    for (int i = 0; i < 10; ++i) {
        paintAll();
    }
    EXPECT_LE(GdiObjectCount(), before);
}

// To look at and to play with: run it with --gtest_also_run_disabled_tests; Esc closes the window.
TEST_F(Showcase, DISABLED_StaysOpen) {
    TestWindow window(layout);
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick && msg.sender->GetName() == L"close") {
            window.Close();
        }
    };
    window.CenterWindow();
    window.ShowWindow(true, true);
    MSG msg{};
    while (window.GetHWND() != nullptr && GetMessageW(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

}  // namespace
}  // namespace DuiLib::Test
