#pragma once
// The shell's desktop folder with a thumbnail for every file, while one lives.
//
// Why: not every system has an extractor for videos, so without this no test would see a cover registered. The steps
// are those that the shell documents: folder, file in it, extractor, picture. Threads: any; one call at a time.
#include <windows.h>

#include <shlobj.h>

#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"

class FakeShell final : private IShellFolder, private IExtractImage {
  public:
    // The quarters of every file's cover, 0x00RRGGBB.
    static constexpr DWORD kTopLeft = 0xC02020;
    static constexpr DWORD kTopRight = 0x2040C0;
    static constexpr DWORD kBottomLeft = 0x20A040;
    static constexpr DWORD kBottomRight = 0xA0A0A0;

    FakeShell() { current_ = this; }
    ~FakeShell() { current_ = nullptr; }
    FakeShell(const FakeShell&) = delete;
    FakeShell& operator=(const FakeShell&) = delete;

    // What the last cover was asked for.
    std::wstring folder, file;
    DWORD thread = 0;
    std::atomic<int> covers = 0;
    bool locationAsked = false;
    // Each cover is only made once this is signalled; borrowed, null for at once.
    HANDLE gate = nullptr;

  private:
    static HRESULT WINAPI Desktop(IShellFolder** folder) {
        *folder = current_;
        return S_OK;
    }

    // --- IUnknown; the test owns it
    STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    // --- IShellFolder
    STDMETHODIMP ParseDisplayName(HWND, IBindCtx*, LPWSTR name, ULONG*, PIDLIST_RELATIVE* items, ULONG*) override {
        folder = std::exchange(file, name);
        *items = static_cast<PIDLIST_RELATIVE>(CoTaskMemAlloc(sizeof(SHITEMID)));
        return S_OK;
    }
    STDMETHODIMP BindToObject(PCUIDLIST_RELATIVE, IBindCtx*, REFIID iid, void** object) override {
        *object = iid == IID_IShellFolder ? static_cast<IShellFolder*>(this) : nullptr;
        return S_OK;
    }
    STDMETHODIMP GetUIObjectOf(HWND, UINT count, PCUITEMID_CHILD_ARRAY, REFIID iid, UINT*, void** object) override {
        *object = count == 1 && iid == IID_IExtractImage ? static_cast<IExtractImage*>(this) : nullptr;
        return S_OK;
    }
    STDMETHODIMP EnumObjects(HWND, SHCONTF, IEnumIDList**) override { return E_NOTIMPL; }
    STDMETHODIMP BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override { return E_NOTIMPL; }
    STDMETHODIMP CompareIDs(LPARAM, PCUIDLIST_RELATIVE, PCUIDLIST_RELATIVE) override { return E_NOTIMPL; }
    STDMETHODIMP CreateViewObject(HWND, REFIID, void**) override { return E_NOTIMPL; }
    STDMETHODIMP GetAttributesOf(UINT, PCUITEMID_CHILD_ARRAY, SFGAOF*) override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayNameOf(PCUITEMID_CHILD, SHGDNF, STRRET*) override { return E_NOTIMPL; }
    STDMETHODIMP SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD*) override { return E_NOTIMPL; }

    // --- IExtractImage
    STDMETHODIMP GetLocation(LPWSTR, DWORD, DWORD*, const SIZE*, DWORD, DWORD*) override {
        locationAsked = true;
        return S_OK;
    }
    STDMETHODIMP Extract(HBITMAP* picture) override {
        thread = GetCurrentThreadId();
        if (gate) {
            WaitForSingleObject(gate, INFINITE);
        }
        constexpr int kWidth = 320;
        constexpr int kHeight = 180;
        std::vector<DWORD> pixels;
        for (int y = 0; y < kHeight; ++y) {
            const bool top = y < kHeight / 2;
            pixels.insert(pixels.end(), kWidth / 2, 0xFF000000 | (top ? kTopLeft : kBottomLeft));
            pixels.insert(pixels.end(), kWidth / 2, 0xFF000000 | (top ? kTopRight : kBottomRight));
        }
        *picture = CreateBitmap(kWidth, kHeight, 1, 32, pixels.data());
        ++covers;
        return S_OK;
    }

    static inline FakeShell* current_ = nullptr;

    const harness::ImportHook desktop_{nullptr, "SHGetDesktopFolder", &Desktop};
};
