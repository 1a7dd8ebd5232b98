#include "driver/com/class_factory.h"

#include "driver/com/Corvane.h"
#include "driver/com/guard.h"
#include "driver/com/library_use.h"

namespace corvane {

namespace {

// One for all callers, never destroyed: it has no state. A reference to it keeps the library loaded.
class ClassFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (identifier != __uuidof(IUnknown) && identifier != __uuidof(IClassFactory)) return E_NOINTERFACE;
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override {
        KeepLibrary();
        return 2;
    }

    ULONG STDMETHODCALLTYPE Release() override {
        LetLibraryGo();
        return 1;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID identifier, void** object) override {
        return Guard(
            [&] {
                *object = nullptr;
                if (outer != nullptr) throw Failure{CLASS_E_NOAGGREGATION};
                Corvane* created = new Corvane;
                const HRESULT result = created->QueryInterface(identifier, object);
                created->Release();
                Check(result);
            },
            object);
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock ? KeepLibrary() : LetLibraryGo();
        return S_OK;
    }
};

ClassFactory Factory;

}  // namespace

HRESULT GetClassFactory(REFIID identifier, void** object) {
    return Factory.QueryInterface(identifier, object);
}

}  // namespace corvane
