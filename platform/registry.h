// The platform's registry through its ANSI functions, one to one: parameters, results and failures are the platform's
// own. All texts are ANSI, paths are separated by "\", an empty path is the parent itself, and paths and names end at
// their first zero. Results are the platform's codes, 0 for success.
#pragma once

#include <cstdint>
#include <string>

namespace corvane::platform {

using RegistryKey = uint32_t;  // an open key, or a predefined root

constexpr RegistryKey CurrentUserRoot = 0x80000001;

// Rights that a key is opened with.
constexpr uint32_t QueryValueRight = 1;
constexpr uint32_t SetValueRight = 2;
constexpr uint32_t CreateSubKeyRight = 4;
constexpr uint32_t EnumerateSubKeysRight = 8;
constexpr uint32_t ReadControlRight = 0x20000;

// Types of value data.
constexpr uint32_t TextType = 1;
constexpr uint32_t ExpandTextType = 2;
constexpr uint32_t BinaryType = 3;
constexpr uint32_t DWordType = 4;
constexpr uint32_t BigEndianDWordType = 5;
constexpr uint32_t MultiTextType = 7;

struct KeyInfo {
    uint32_t SubKeys = 0;
    uint32_t LongestSubKey = 0;  // characters
    uint32_t Values = 0;
    uint32_t LongestValueName = 0;  // characters
};

// The caller closes a key that was opened or created.
int32_t OpenKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key);
// Creates the missing keys of the path, on disk and without a class; opens a key that exists.
int32_t CreateKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key);
void CloseKey(RegistryKey key);
// A key that has subkeys is not deleted.
int32_t DeleteKey(RegistryKey parent, const std::string& path);
int32_t QueryKeyInfo(RegistryKey key, KeyInfo& info);
// length: in: room in `name`, its terminator included, out: characters of the name.
int32_t EnumKeyName(RegistryKey key, uint32_t index, char* name, uint32_t& length);

// data may be null: only type and size are wanted then. size: in: room in `data`, out: bytes of the value, also when
// they did not fit.
int32_t QueryKeyValue(RegistryKey key, const std::string& name, uint32_t* type, void* data, uint32_t& size);
// The same by index, in the order of the platform, with the value's name. length as in EnumKeyName.
int32_t EnumKeyValue(RegistryKey key, uint32_t index, char* name, uint32_t& length, uint32_t* type, void* data,
                     uint32_t& size);
// With a text type the platform also reads the byte after the data, which must be readable. When the text has no
// terminator of its own and that byte is zero, the byte is stored, too.
int32_t SetKeyValue(RegistryKey key, const std::string& name, uint32_t type, const void* data, uint32_t size);
int32_t DeleteKeyValue(RegistryKey key, const std::string& name);

}  // namespace corvane::platform
