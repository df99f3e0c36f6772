#pragma once
// Opens a still image far enough to tell its size in pixels, and accepts only plain blue-green-red pixels.
//
// The check is narrow on purpose: palette, grey, 48- and 64-bit, CMYK and RGB-ordered images are refused, for the
// camera service reads the same files with the same limits. Between two files comes Close. The caller has started COM
// on its thread, and uses the object there only.
#include <windows.h>

#include <wincodec.h>

#include <string>

class ImageReader {
  public:
    ImageReader() = default;
    ~ImageReader();
    ImageReader(const ImageReader&) = delete;
    ImageReader& operator=(const ImageReader&) = delete;

    // False: the log tells the step, and nothing stays open.
    [[nodiscard]] bool Open(const std::wstring& path);
    // Asks the first frame again. False while nothing is open.
    [[nodiscard]] bool GetSize(UINT* widthPx, UINT* heightPx);
    void Close();

  private:
    bool OpenFirstFrame(const std::wstring& path);

    IWICImagingFactory* factory_ = nullptr;
    IWICBitmapDecoder* decoder_ = nullptr;
    IWICBitmapFrameDecode* frame_ = nullptr;
};
