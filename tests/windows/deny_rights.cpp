#include <windows.h>

#include <sddl.h>

#include "tests/registry/registry_stage.h"

namespace corvane::test {

// The key's access list: refuses these rights to everyone, then allows everyone the rest.
void DenyRights(const std::string& path, uint32_t rights) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, WRITE_DAC, &key)) << path;
    const std::string refused = rights != 0 ? "(D;;" + std::to_string(rights) + ";;;WD)" : "";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(("D:" + refused + "(A;;KA;;;WD)").c_str(),
                                                                     SDDL_REVISION_1, &descriptor, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
    RegCloseKey(key);
}

}  // namespace corvane::test
