// Texts that the system has to shape: letters of right-to-left scripts, alone and beside others.
#include <windows.h>

#include <string>

#include "DuiLib/RenderEngine.h"
#include "TestWindow.h"

namespace DuiLib::Test {
namespace {

// Hebrew: letters that do not join, so that widths add up.
constexpr wchar_t kAlef = L'\u05D0';
constexpr wchar_t kBet = L'\u05D1';

class ShapedText : public testing::Test {
  protected:
    int Width(const std::wstring& text) {
        CPaintManagerUI& manager = window.PaintManager();
        Rect rect;
        CRenderEngine::DrawText(manager.GetPaintDC(), &manager, rect, text, 0, 0, DT_CALCRECT);
        return rect.Width();
    }

    TestWindow window{R"(<Window size="100,50"><Font id="0" size="16" default="true"/><Label name="l"/></Window>)"};
};

TEST_F(ShapedText, EachLetterHasItsWidth) {
    const int alef = Width({kAlef});
    const int bet = Width({kBet});
    ASSERT_GT(alef, 0);
    ASSERT_GT(bet, 0);
    EXPECT_EQ(Width({kAlef, kAlef}), 2 * alef);
    EXPECT_EQ(Width({kAlef, kBet}), alef + bet);
    EXPECT_EQ(Width({kBet, kBet, kAlef}), 2 * bet + alef);
}

TEST_F(ShapedText, TheLastLetterOfEachDirectionHasItsWidthToo) {
    const int hebrew = Width({kAlef, kBet});
    const int latin = Width(L"ab");
    EXPECT_EQ(Width({kAlef, kBet, L'a', L'b'}), hebrew + latin);
    EXPECT_EQ(Width({L'a', L'b', kAlef, kBet}), hebrew + latin);
    EXPECT_EQ(Width({L'a', kAlef, L'b'}), Width({kAlef}) + Width(L"a") + Width(L"b"));
}

}  // namespace
}  // namespace DuiLib::Test
