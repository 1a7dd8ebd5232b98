#include "driver/com/automation.h"

#include "platform/win32/component_module.h"

namespace corvane {

TypeDescription::~TypeDescription() {
    if (Info_ != nullptr) Info_->Release();
}

ITypeInfo* TypeDescription::Get() {
    if (Info_ == nullptr) {
        // LoadTypeLibEx takes the number of the resource as a last component of the path.
        const std::wstring path = platform::ComponentPath() + L'\\' + std::to_wstring(Resource_);
        ITypeLib* library = nullptr;
        Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
        const HRESULT result = library->GetTypeInfoOfGuid(Identifier_, &Info_);
        library->Release();
        Check(result);
    }
    return Info_;
}

}  // namespace corvane
