#include "Rendering.h"

#include <objbase.h>

#include <stdexcept>

namespace DuiLib::Test {
namespace {

void Check(HRESULT hr) {
    if (FAILED(hr)) {
        throw std::runtime_error("the picture could not be written");
    }
}

}  // namespace

void WritePng(const std::wstring& path, Size sizePx, const std::vector<std::uint32_t>& pixels) {
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IWICImagingFactory* factory = nullptr;
    IWICStream* stream = nullptr;
    IWICBitmapEncoder* encoder = nullptr;
    IWICBitmapFrameEncode* frame = nullptr;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                           reinterpret_cast<void**>(&factory)));
    Check(factory->CreateStream(&stream));
    Check(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE));
    Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder));
    Check(encoder->Initialize(stream, WICBitmapEncoderNoCache));
    Check(encoder->CreateNewFrame(&frame, nullptr));
    Check(frame->Initialize(nullptr));
    const UINT width = static_cast<UINT>(sizePx.cx), height = static_cast<UINT>(sizePx.cy);
    Check(frame->SetSize(width, height));
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGRA;
    Check(frame->SetPixelFormat(&format));
    auto* bytes = reinterpret_cast<BYTE*>(const_cast<std::uint32_t*>(pixels.data()));
    Check(frame->WritePixels(height, width * 4, width * height * 4, bytes));
    Check(frame->Commit());
    Check(encoder->Commit());
    frame->Release();
    encoder->Release();
    stream->Release();
    factory->Release();
    if (SUCCEEDED(apartment)) {
        CoUninitialize();
    }
}

void WriteImage(const std::wstring& name, Size sizePx, const std::vector<std::uint32_t>& pixels) {
    const std::filesystem::path path = std::filesystem::path(ResourceFolder::Get().Path()) / name;
    std::filesystem::create_directories(path.parent_path());
    WritePng(path.wstring(), sizePx, pixels);
}

Rect Picture::InkWithin(const Rect& px, std::uint32_t background) const {
    Rect ink;
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x) {
            if (At({x, y}) != background) {
                ink = ink.Union({x, y, x + 1, y + 1});
            }
        }
    }
    return ink;
}

int Picture::CountOf(const Rect& px, std::uint32_t color) const {
    int count = 0;
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x) {
            count += At({x, y}) == color ? 1 : 0;
        }
    }
    return count;
}

Picture Render(TestWindow& window, int dpi, const std::wstring& name) {
    CPaintManagerUI& manager = window.PaintManager();
    manager.SetDPI(dpi);
    const Size size{DipToPx(manager.GetWindowSpec().sizeDip.cx, dpi), DipToPx(manager.GetWindowSpec().sizeDip.cy, dpi)};
    SetWindowPos(window.GetHWND(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOMOVE);
    manager.UpdateLayout();
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ original = SelectObject(dc, bitmap);
    manager.PaintTo(dc);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    Picture picture{size, {pixels, pixels + static_cast<size_t>(size.cx) * static_cast<size_t>(size.cy)}};
    SelectObject(dc, original);
    DeleteObject(bitmap);
    DeleteDC(dc);
    wchar_t folder[MAX_PATH]{};
    if (!name.empty() && GetEnvironmentVariableW(L"DUILIB_SHOTS", folder, MAX_PATH) > 0) {
        std::vector<std::uint32_t> opaque = picture.pixels;
        for (std::uint32_t& pixel : opaque) {
            pixel |= 0xFF000000;
        }
        WritePng(std::wstring(folder) + L"\\" + name + L"_" + std::to_wstring(dpi) + L".png", size, opaque);
    }
    return picture;
}

Direction::Direction(bool rightToLeft) {
    const ResourceFolder& folder = ResourceFolder::Get();
    folder.Write(L"direction\\en_US\\strings.xml", R"(<Strings language="en_US" direction="ltr"/>)");
    folder.Write(L"direction\\ar_SA\\strings.xml", R"(<Strings language="ar_SA" direction="rtl"/>)");
    const std::wstring language = rightToLeft ? L"ar_SA" : L"en_US";
    UICulture::GetInstance()->SetValuesFolder(ResourceFolder::Get().Path() + L"direction");
    UICulture::GetInstance()->SelectLanguage(language, true);
}

Direction::~Direction() {
    UICulture::GetInstance()->SelectLanguage(L"en_US", true);
}

}  // namespace DuiLib::Test
