#include "driver/com/automation.h"

#include "driver/com/library.h"

namespace corvane {

TypeDescription::~TypeDescription() {
    if (Info_ != nullptr) Info_->Release();
}

ITypeInfo* TypeDescription::Get() {
    if (Info_ == nullptr) {
        // LoadTypeLibEx takes the number of the resource as a last component of the path.
        const std::wstring path = ModulePath() + L'\\' + std::to_wstring(Resource_);
        ITypeLib* library = nullptr;
        Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
        const HRESULT result = library->GetTypeInfoOfGuid(Identifier_, &Info_);
        library->Release();
        Check(result);
    }
    return Info_;
}

void Check(HRESULT result) {
    if (FAILED(result)) throw Failure{result};
}

}  // namespace corvane
