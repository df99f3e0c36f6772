#pragma once
// The first picture that a decoder of the system finds in a file, and its pixels, row by row.
//
// Threads: any that has entered a COM apartment; the decoder's own rule counts.
#include <windows.h>

#include <wincodec.h>

#include <cstdint>

#include "suite/common/ComReference.h"

namespace pictures {

class WicPicture {
  public:
    // Fails for a picture without pixels, and for one so large that sizes in bytes would not fit 32 bits.
    [[nodiscard]] HRESULT Open(IWICImagingFactory* factory, IWICBitmapDecoder* decoder);

    UINT Width() const { return width_; }
    UINT Height() const { return height_; }
    // As the file has it.
    IWICBitmapFrameDecode* Frame() const { return frame_.Get(); }
    // Pixels of 32 bits, alpha last, without gaps. REQUIRES: the rows lie within the picture.
    [[nodiscard]] HRESULT ReadRows(UINT top, UINT rows, std::uint32_t* pixels) const;

  private:
    UINT width_ = 0;
    UINT height_ = 0;
    suite::ComReference<IWICBitmapFrameDecode> frame_;
    suite::ComReference<IWICFormatConverter> pixels_;
};

[[nodiscard]] HRESULT MakeWicFactory(suite::ComReference<IWICImagingFactory>& factory);
[[nodiscard]] HRESULT MakeWicDecoder(IWICImagingFactory* factory, const wchar_t* path,
                                     suite::ComReference<IWICBitmapDecoder>& decoder);

}  // namespace pictures
