#pragma once
// A media buffer with rows of its own whose memory ends where it says.
//
// Rows may be padded and lie in either order, the allocation may have more of them than the picture, and the byte
// behind the last one belongs to nobody (GuardedMemory). Lock packs, as documented: rows without padding, in memory of
// its own. What is locked must be unlocked the same way before the last Release. Any thread, one at a time.
#include <windows.h>

#include <mfobjects.h>

#include <atomic>
#include <cstdint>
#include <memory>

#include "tests/support/doubles/GuardedMemory.h"

namespace doubles {

struct BufferShape {
    std::uint32_t rowBytes = 0;         // of the picture's rows
    std::uint32_t rows = 0;             // of the picture, those of a chroma plane included
    std::uint32_t padding = 0;          // bytes behind each row
    std::uint32_t spareRows = 0;        // allocated beyond the picture's; with a chroma plane they lie before that
    std::uint32_t rowsBeforeSpare = 0;  // where the spare rows lie; 0: at the end
    bool bottomUp = false;
    // Which interfaces it has, and which of their calls fail.
    bool knowsPlanes = true;  // IMF2DBuffer
    bool knowsBounds = true;  // IMF2DBuffer2
    HRESULT lock2DSize = S_OK;
    HRESULT lock2D = S_OK;
    HRESULT lock = S_OK;
    HRESULT contiguousLength = S_OK;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class BufferDouble final : public IMFMediaBuffer, public IMF2DBuffer2 {
  public:
    // The rows as they lie in the picture, without padding: rowBytes * rows bytes. The caller owns the one reference.
    static IMFMediaBuffer* Make(const BufferShape& shape, const std::uint8_t* rows);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;

    STDMETHODIMP Lock(BYTE** data, DWORD* maxLength, DWORD* currentLength) override;
    STDMETHODIMP Unlock() override;
    STDMETHODIMP GetCurrentLength(DWORD* length) override;
    STDMETHODIMP SetCurrentLength(DWORD length) override;
    STDMETHODIMP GetMaxLength(DWORD* length) override;

    STDMETHODIMP Lock2D(BYTE** row, LONG* pitch) override;
    STDMETHODIMP Unlock2D() override;
    STDMETHODIMP GetScanline0AndPitch(BYTE** row, LONG* pitch) override;
    STDMETHODIMP IsContiguousFormat(WINBOOL* contiguous) override;
    STDMETHODIMP GetContiguousLength(DWORD* length) override;
    STDMETHODIMP ContiguousCopyTo(BYTE* to, DWORD size) override;
    STDMETHODIMP ContiguousCopyFrom(const BYTE* from, DWORD size) override;

    STDMETHODIMP Lock2DSize(MF2DBuffer_LockFlags flags, BYTE** row, LONG* pitch, BYTE** start, DWORD* length) override;
    STDMETHODIMP Copy2DTo(IMF2DBuffer2* to) override;

  private:
    explicit BufferDouble(const BufferShape& shape);
    std::uint32_t PitchBytes() const { return shape_.rowBytes + shape_.padding; }
    std::uint32_t PackedBytes() const { return shape_.rowBytes * shape_.rows; }
    std::uint8_t* Row(std::uint32_t row) const;

    const BufferShape shape_;
    GuardedMemory memory_;
    std::unique_ptr<GuardedMemory> packed_;  // while it is locked by Lock
    std::atomic<ULONG> references_ = 1;
    int locks_ = 0;
    int planeLocks_ = 0;
};
#pragma GCC diagnostic pop

}  // namespace doubles
