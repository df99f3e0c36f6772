#pragma once
// The first picture that a decoder of the system's imaging component finds in a file, and its pixels, row by row.
//
// Threads: any that has entered a COM apartment; the decoder's own rule counts.
#include <windows.h>

#include <wincodec.h>

#include <cstdint>

#include "suite/common/ComReference.h"

namespace suite {

[[nodiscard]] HRESULT MakeWicFactory(ComReference<IWICImagingFactory>& factory);
[[nodiscard]] HRESULT MakeWicDecoder(IWICImagingFactory* factory, const wchar_t* path,
                                     ComReference<IWICBitmapDecoder>& decoder);

class WicPicture {
  public:
    // Sizes in bytes fit 32 bits.
    static constexpr UINT kMaxSidePx = 16384;

    // `format`: what ReadRows gives, of 32 bits a pixel. Fails for a picture without pixels, and for one that is wider
    // or higher than `maxSidePx`, which is no more than kMaxSidePx.
    [[nodiscard]] HRESULT Open(IWICImagingFactory* factory, IWICBitmapDecoder* decoder,
                               const WICPixelFormatGUID& format = GUID_WICPixelFormat32bppBGRA,
                               UINT maxSidePx = kMaxSidePx);

    UINT Width() const { return width_; }
    UINT Height() const { return height_; }
    // As the file has it.
    IWICBitmapFrameDecode* Frame() const { return frame_.Get(); }
    // Rows without gaps. REQUIRES: they lie within the picture.
    [[nodiscard]] HRESULT ReadRows(UINT top, UINT rows, std::uint32_t* pixels) const;

  private:
    UINT width_ = 0;
    UINT height_ = 0;
    ComReference<IWICBitmapFrameDecode> frame_;
    ComReference<IWICFormatConverter> pixels_;
};

}  // namespace suite
