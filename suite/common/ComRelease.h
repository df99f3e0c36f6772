#pragma once
// The one place where references to COM objects are given back: raw interface pointers are released and made null.
// Any thread; the interface's own rule counts.

// Releases what the pointer holds, if anything, and makes it null.
template <typename Interface>
void ComRelease(Interface*& object) {
    if (object) {
        object->Release();
        object = nullptr;
    }
}
