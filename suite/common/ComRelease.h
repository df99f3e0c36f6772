#pragma once
// The one way in which COM pointers are given back: raw interface pointers are held, and released here.
// Any thread; the interface's own rule counts.

// Releases what the pointer holds, if anything, and makes it null.
template <typename Interface>
void ComRelease(Interface*& object) {
    if (!object)
        return;
    object->Release();
    object = nullptr;
}
