#include <windows.h>

#include "tests/registry/registry_stage.h"

namespace corvane::test {

// The key's access list: refuses these rights to everyone, then allows everyone the rest.
void DenyRights(const std::string& path, uint32_t rights) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, WRITE_DAC, &key)) << path;
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID everyone = nullptr;
    AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone);
    alignas(ACL) char room[256] = {};
    const PACL list = reinterpret_cast<PACL>(room);
    InitializeAcl(list, sizeof room, ACL_REVISION);
    if (rights != 0) AddAccessDeniedAce(list, ACL_REVISION, rights, everyone);
    AddAccessAllowedAce(list, ACL_REVISION, KEY_ALL_ACCESS, everyone);
    SECURITY_DESCRIPTOR descriptor = {};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    EXPECT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor));
    FreeSid(everyone);
    RegCloseKey(key);
}

}  // namespace corvane::test
