#include "platform/portable/registry_hooks.h"
#include "tests/registry/registry_stage.h"

namespace corvane::test {

void DenyRights(const std::string& path, uint32_t rights) {
    platform::DenyRights(CurrentUser, path, rights);
}

}  // namespace corvane::test
