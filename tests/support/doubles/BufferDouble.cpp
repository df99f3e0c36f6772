#include "tests/support/doubles/BufferDouble.h"

#include <mferror.h>

#include <cstring>

#include "tests/support/doubles/Violations.h"

namespace doubles {

IMFMediaBuffer* BufferDouble::Make(const BufferShape& shape, const std::uint8_t* rows) {
    auto* buffer = new BufferDouble(shape);
    for (std::uint32_t row = 0; row < shape.rows; ++row) {
        std::memcpy(buffer->Row(row), rows + std::size_t{row} * shape.rowBytes, shape.rowBytes);
    }
    return buffer;
}

BufferDouble::BufferDouble(const BufferShape& shape)
    : shape_(shape),
      // The last row needs no padding: whoever reads it is beyond the end.
      memory_(std::size_t{shape.rowBytes + shape.padding} * (shape.rows + shape.spareRows - 1) + shape.rowBytes) {
    std::memset(memory_.Bytes(), 0xA5, memory_.Size());
}

std::uint8_t* BufferDouble::Row(std::uint32_t row) const {
    const bool behindSpare = shape_.rowsBeforeSpare != 0 && row >= shape_.rowsBeforeSpare;
    const std::uint32_t place = row + (behindSpare ? shape_.spareRows : 0);
    const std::uint32_t all = shape_.rows + shape_.spareRows;
    return memory_.Bytes() + std::size_t{PitchBytes()} * (shape_.bottomUp ? all - 1 - place : place);
}

STDMETHODIMP BufferDouble::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IMFMediaBuffer)) {
        *object = static_cast<IMFMediaBuffer*>(this);
    } else if ((iid == __uuidof(IMF2DBuffer) && shape_.knowsPlanes) ||
               (iid == __uuidof(IMF2DBuffer2) && shape_.knowsPlanes && shape_.knowsBounds)) {
        *object = static_cast<IMF2DBuffer2*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) BufferDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        if (locks_ != 0 || planeLocks_ != 0) {
            Violations::Add("a buffer is released while it is locked");
        }
        delete this;
    }
    return left;
}

STDMETHODIMP BufferDouble::Lock(BYTE** data, DWORD* maxLength, DWORD* currentLength) {
    if (FAILED(shape_.lock)) {
        return shape_.lock;
    }
    if (planeLocks_ != 0) {
        Violations::Add("Lock of a buffer that is locked by its rows");
        return MF_E_INVALIDREQUEST;
    }
    ++locks_;
    packed_ = std::make_unique<GuardedMemory>(PackedBytes());
    ContiguousCopyTo(packed_->Bytes(), PackedBytes());
    *data = packed_->Bytes();
    if (maxLength) {
        *maxLength = PackedBytes();
    }
    if (currentLength) {
        *currentLength = PackedBytes();
    }
    return S_OK;
}

STDMETHODIMP BufferDouble::Unlock() {
    if (locks_ == 0) {
        Violations::Add("Unlock of a buffer that is not locked");
        return MF_E_INVALIDREQUEST;
    }
    --locks_;
    packed_.reset();
    return S_OK;
}

STDMETHODIMP BufferDouble::GetCurrentLength(DWORD* length) {
    *length = PackedBytes();
    return S_OK;
}

STDMETHODIMP BufferDouble::SetCurrentLength(DWORD /*length*/) {
    return E_NOTIMPL;
}

STDMETHODIMP BufferDouble::GetMaxLength(DWORD* length) {
    *length = PackedBytes();
    return S_OK;
}

STDMETHODIMP BufferDouble::Lock2D(BYTE** row, LONG* pitch) {
    if (FAILED(shape_.lock2D)) {
        return shape_.lock2D;
    }
    if (locks_ != 0) {
        Violations::Add("Lock2D of a buffer that is locked");
        return MF_E_UNEXPECTED;
    }
    ++planeLocks_;
    return GetScanline0AndPitch(row, pitch);
}

STDMETHODIMP BufferDouble::Unlock2D() {
    if (planeLocks_ == 0) {
        Violations::Add("Unlock2D of a buffer that is not locked by its rows");
        return MF_E_INVALIDREQUEST;
    }
    --planeLocks_;
    return S_OK;
}

STDMETHODIMP BufferDouble::GetScanline0AndPitch(BYTE** row, LONG* pitch) {
    if (planeLocks_ == 0) {
        return HRESULT_FROM_WIN32(ERROR_INVALID_FUNCTION);
    }
    *row = Row(0);
    *pitch = shape_.bottomUp ? -static_cast<LONG>(PitchBytes()) : static_cast<LONG>(PitchBytes());
    return S_OK;
}

STDMETHODIMP BufferDouble::IsContiguousFormat(WINBOOL* contiguous) {
    *contiguous = shape_.padding == 0 && shape_.spareRows == 0;
    return S_OK;
}

STDMETHODIMP BufferDouble::GetContiguousLength(DWORD* length) {
    *length = PackedBytes();
    return shape_.contiguousLength;
}

// In the order of the memory: what the type's default stride says.
STDMETHODIMP BufferDouble::ContiguousCopyTo(BYTE* to, DWORD size) {
    if (size < PackedBytes()) {
        return E_INVALIDARG;
    }
    for (std::uint32_t row = 0; row < shape_.rows; ++row) {
        const std::uint32_t place = shape_.bottomUp ? shape_.rows - 1 - row : row;
        std::memcpy(to + std::size_t{place} * shape_.rowBytes, Row(row), shape_.rowBytes);
    }
    return S_OK;
}

STDMETHODIMP BufferDouble::ContiguousCopyFrom(const BYTE* /*from*/, DWORD /*size*/) {
    return E_NOTIMPL;
}

STDMETHODIMP BufferDouble::Lock2DSize(MF2DBuffer_LockFlags flags, BYTE** row, LONG* pitch, BYTE** start,
                                      DWORD* length) {
    if (flags != MF2DBuffer_LockFlags_Read) {
        Violations::Add("Lock2DSize for more than reading");
    }
    if (FAILED(shape_.lock2DSize)) {
        return shape_.lock2DSize;
    }
    const HRESULT result = Lock2D(row, pitch);
    if (SUCCEEDED(result)) {
        *start = memory_.Bytes();
        *length = static_cast<DWORD>(memory_.Size());
    }
    return result;
}

STDMETHODIMP BufferDouble::Copy2DTo(IMF2DBuffer2* /*to*/) {
    return E_NOTIMPL;
}

}  // namespace doubles
