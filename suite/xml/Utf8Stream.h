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

namespace suite {

// COM's interfaces have no virtual destructor; nothing is deleted through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class Utf8Stream final : public ISequentialStream {
  public:
    // Begins with one reference, the caller's.
    explicit Utf8Stream(std::string_view text) : rest_(text) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE Read(void* bytes, ULONG size, ULONG* read) override;
    HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG size, ULONG* written) override;

  private:
    ~Utf8Stream() = default;

    LONG references_ = 1;
    std::string_view rest_;
};
#pragma GCC diagnostic pop

}  // namespace suite
