#include "platform/win32/visual_styles.h"

#include <commctrl.h>

#include "platform/win32/component_module.h"

namespace corvane::platform {

VisualStyles::VisualStyles() {
    ACTCTXW context = {};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpResourceName = MAKEINTRESOURCEW(2);  // number of a library's manifest
    context.hModule = ComponentModule();
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(context.hModule, path, MAX_PATH);
    context.lpSource = path;
    Context_ = CreateActCtxW(&context);
    Active_ = Context_ != INVALID_HANDLE_VALUE && ActivateActCtx(Context_, &Cookie_);
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);
}

VisualStyles::~VisualStyles() {
    if (Active_) DeactivateActCtx(0, Cookie_);
    if (Context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(Context_);
}

}  // namespace corvane::platform
