#include "tests/windows/support/Screen.h"

#include <set>

#include "tests/support/PngFile.h"

DWORD Picture::At(DuiLib::Point px) const {
    return pixels.at(static_cast<std::size_t>(px.y) * static_cast<std::size_t>(widthPx) +
                     static_cast<std::size_t>(px.x));
}

int Picture::ColorsIn(const DuiLib::Rect& px) const {
    std::set<DWORD> colors;
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x)
            colors.insert(At({x, y}));
    }
    return static_cast<int>(colors.size());
}

Picture PaintedBy(DuiLib::CPaintManagerUI& manager, const std::wstring& name) {
    RECT client = {};
    GetClientRect(manager.GetPaintWindow(), &client);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), client.right, -client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ previous = SelectObject(dc, bitmap);
    manager.PaintTo(dc);
    GdiFlush();

    Picture picture{client.right, client.bottom, {}};
    const auto* first = static_cast<const DWORD*>(bits);
    picture.pixels.assign(first,
                          first + static_cast<std::size_t>(client.right) * static_cast<std::size_t>(client.bottom));
    for (DWORD& pixel : picture.pixels)
        pixel &= 0xFFFFFF;
    SelectObject(dc, previous);
    DeleteObject(bitmap);
    DeleteDC(dc);

    wchar_t folder[MAX_PATH] = {};
    if (!name.empty() && GetEnvironmentVariableW(L"PIXORA_SHOTS", folder, MAX_PATH))
        WritePng(std::wstring(folder) + L"\\" + name + L".png", picture.pixels, picture.widthPx, picture.heightPx);
    return picture;
}

bool AreSameRegion(HRGN a, HRGN b) {
    const HRGN difference = CreateRectRgn(0, 0, 0, 0);
    const int kind = CombineRgn(difference, a, b, RGN_XOR);
    DeleteObject(difference);
    return kind == NULLREGION;
}
