#pragma once
// A UTF-8 text as input of the system's XML reader. A read ends behind an ASCII character: the gate sees to it that
// there is one in any two thousand bytes.
//
// Why not the system's memory stream: a reader that takes its input in pieces may damage the text between two of them
// when a piece ends within or behind a character of several bytes. Threads: as the reader that owns it. The text is
// borrowed and must outlive the stream.
#include <windows.h>

#include <objidl.h>

#include <string_view>

#include "suite/common/ComObject.h"

namespace suite {

class Utf8Stream final : public ComObject<ISequentialStream> {
  public:
    // Begins with one reference, the caller's.
    explicit Utf8Stream(std::string_view text) : rest_(text) {}

    HRESULT STDMETHODCALLTYPE Read(void* bytes, ULONG size, ULONG* read) override;
    HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG size, ULONG* written) override;

  private:
    ~Utf8Stream() override = default;

    std::string_view rest_;
};

}  // namespace suite
