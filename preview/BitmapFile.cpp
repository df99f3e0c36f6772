#include "preview/BitmapFile.h"

#include "preview/BitmapLayout.h"
#include "suite/common/Handle.h"

namespace {

static_assert(sizeof(BITMAPFILEHEADER) == preview::kFileHeaderBytes);
static_assert(sizeof(BITMAPINFOHEADER) == preview::kInfoHeaderBytes);

// A zeroed block of movable memory, locked while the object lives.
class GlobalBlock {
  public:
    explicit GlobalBlock(SIZE_T bytes) : memory_(GlobalAlloc(GHND, bytes)) {
        data_ = memory_ != nullptr ? GlobalLock(memory_) : nullptr;
    }
    // Keeps the thread's last error: unlocking sets it to zero, and whoever writes the block tells why that failed.
    ~GlobalBlock() {
        const DWORD error = GetLastError();
        if (data_ != nullptr) {
            GlobalUnlock(memory_);
        }
        if (memory_ != nullptr) {
            GlobalFree(memory_);
        }
        SetLastError(error);
    }
    GlobalBlock(const GlobalBlock&) = delete;
    GlobalBlock& operator=(const GlobalBlock&) = delete;

    void* Data() const { return data_; }

  private:
    HGLOBAL const memory_;
    void* data_;
};

int DisplayBitsPerPixel() {
    HDC display = CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
    const int bits = GetDeviceCaps(display, BITSPIXEL) * GetDeviceCaps(display, PLANES);
    DeleteDC(display);
    return bits;
}

// The pixels in the header's depth, to right behind the header.
void ReadPixels(HBITMAP bitmap, BITMAPINFOHEADER* header) {
    // A shallow depth has the system write colours behind the header that it is given.
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colors[256];
    } info = {*header, {}};
    HDC screen = GetDC(nullptr);
    HPALETTE former = nullptr;
    auto* palette = static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
    if (palette != nullptr) {
        former = SelectPalette(screen, palette, FALSE);
        RealizePalette(screen);
    }
    GetDIBits(screen, bitmap, 0, static_cast<UINT>(header->biHeight), header + 1, reinterpret_cast<BITMAPINFO*>(&info),
              DIB_RGB_COLORS);
    if (former != nullptr) {
        SelectPalette(screen, former, TRUE);
        RealizePalette(screen);
    }
    ReleaseDC(nullptr, screen);
}

bool WriteAll(const suite::Handle& file, const void* data, DWORD bytes) {
    DWORD written = 0;
    return WriteFile(file.Get(), data, bytes, &written, nullptr) && written == bytes;
}

}  // namespace

bool SaveBitmapToFile(HBITMAP bitmap, const std::wstring& path) {
    BITMAP object = {};
    if (GetObjectW(bitmap, sizeof object, &object) == 0 || object.bmWidth <= 0 || object.bmHeight <= 0) {
        return false;
    }
    const int depth = preview::StoredDepth(DisplayBitsPerPixel());
    const UINT64 pixelBytes =
        preview::StoredPixelBytes(static_cast<UINT32>(object.bmWidth), static_cast<UINT32>(object.bmHeight), depth);
    const UINT64 fileSize = preview::kFileHeaderBytes + preview::kInfoHeaderBytes + pixelBytes;
    if (fileSize > MAXLONG) {
        return false;
    }
    // Kept: as many bytes as the whole file has are written after the file header too, so that the file ends in 14
    // bytes without meaning, which its readers ignore. The block is large enough for them, and they are zero.
    const GlobalBlock block(static_cast<SIZE_T>(fileSize));
    if (block.Data() == nullptr) {
        return false;
    }
    auto* header = static_cast<BITMAPINFOHEADER*>(block.Data());
    header->biSize = preview::kInfoHeaderBytes;
    header->biWidth = object.bmWidth;
    header->biHeight = object.bmHeight;
    header->biPlanes = 1;
    header->biBitCount = static_cast<WORD>(depth);
    header->biCompression = BI_RGB;
    ReadPixels(bitmap, header);

    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                         FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        return false;
    }
    BITMAPFILEHEADER fileHeader = {};
    fileHeader.bfType = 0x4D42;  // "BM"
    fileHeader.bfSize = static_cast<DWORD>(fileSize);
    fileHeader.bfOffBits = preview::kFileHeaderBytes + preview::kInfoHeaderBytes;
    // Flushed here, so that nobody has to open it again, which a virus scanner may forbid.
    return WriteAll(file, &fileHeader, sizeof fileHeader) && WriteAll(file, header, static_cast<DWORD>(fileSize)) &&
           FlushFileBuffers(file.Get());
}
