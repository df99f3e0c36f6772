#pragma once
// Reference counting and interface lookup, for classes that implement COM interfaces. Any thread; exceptions of an
// operation are the class's own business.
#include <windows.h>

#include <unknwn.h>

#include <atomic>

namespace suite {

// `Interfaces`: the first one is the object's identity; each of the others is found by its own identifier, bases of an
// interface have to be listed when somebody asks for them. Made with new, which is the first reference.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
template <typename Implemented, typename... AlsoKnownAs>
class ComObject : public Implemented {
  public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(Implemented) ||
                           (false || ... || (iid == __uuidof(AlsoKnownAs)));
        *object = known ? static_cast<Implemented*>(this) : nullptr;
        if (!known) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

  protected:
    ComObject() = default;
    virtual ~ComObject() = default;

  private:
    std::atomic<ULONG> references_ = 1;
};
#pragma GCC diagnostic pop

}  // namespace suite
