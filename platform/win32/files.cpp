#include "platform/files.h"

#include <algorithm>
#include <vector>

#include "platform/win32/plain_file.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

constexpr DWORD NotOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// Checks the long name: a search also finds files by their short names, in which longer extensions are cut.
bool Encloses(const std::wstring& name, const std::wstring& prefix, const std::wstring& suffix) {
    return name.size() >= prefix.size() + suffix.size() &&
           lstrcmpiW(name.substr(0, prefix.size()).c_str(), prefix.c_str()) == 0 &&
           lstrcmpiW(name.substr(name.size() - suffix.size()).c_str(), suffix.c_str()) == 0;
}

constexpr size_t ChunkBytes = 65536;

bool WriteWhole(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto chunk = static_cast<DWORD>(std::min(bytes.size(), ChunkBytes));
        if (!WriteFile(file, bytes.data(), chunk, &written, nullptr) || written == 0) return false;
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file);
}

// What a new file gets from the file that it replaces: attributes, owner and list of rights.
struct Protection {
    DWORD Attributes = FILE_ATTRIBUTE_NORMAL;
    std::vector<BYTE> Descriptor;  // empty: the folder's default
};

// False when they can't be read.
bool ReadProtection(const std::wstring& path, Protection& protection) {
    constexpr SECURITY_INFORMATION Asked =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    protection.Attributes = GetFileAttributesW(path.c_str());
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), Asked, nullptr, 0, &size);
    protection.Descriptor.resize(size);
    return size > 0 && protection.Attributes != INVALID_FILE_ATTRIBUTES &&
           GetFileSecurityW(path.c_str(), Asked, protection.Descriptor.data(), size, &size);
}

enum class Outcome { Done, Failed, NotPossible };

// NotPossible: nothing with this protection can take the file's place.
Outcome WriteBeside(const std::wstring& path, std::string_view bytes, Protection& protection) {
    const std::wstring beside = path + L".new";
    SECURITY_ATTRIBUTES security = {sizeof security, protection.Descriptor.data(), FALSE};
    DeleteFileW(beside.c_str());  // left by a run that was interrupted
    const HANDLE file =
        CreateFileW(beside.c_str(), GENERIC_WRITE, 0, protection.Descriptor.empty() ? nullptr : &security, CREATE_NEW,
                    protection.Attributes | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Outcome::NotPossible;
    const bool written = WriteWhole(file, bytes);
    CloseHandle(file);
    if (written && MoveFileExW(beside.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return Outcome::Done;
    }
    DeleteFileW(beside.c_str());
    return written ? Outcome::NotPossible : Outcome::Failed;
}

HANDLE OpenToWrite(const std::wstring& path) {
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

}  // namespace

std::string PathIn(const std::string& folder, const std::string& name) {
    return folder.ends_with('\\') ? folder + name : folder + "\\" + name;
}

std::string ReadFileStart(const std::string& path, size_t limit) {
    std::string bytes;
    const HANDLE file =
        CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return bytes;
    DWORD count = GetFileType(file) == FILE_TYPE_DISK ? 1 : 0;  // a pipe would wait for somebody
    while (count > 0 && bytes.size() < limit) {
        const size_t held = bytes.size();
        const size_t chunk = std::min(limit - held, ChunkBytes);
        bytes.resize(held + chunk);
        if (!ReadFile(file, bytes.data() + held, static_cast<DWORD>(chunk), &count, nullptr)) count = 0;
        bytes.resize(held + count);
    }
    CloseHandle(file);
    return bytes;
}

bool ReplaceContent(const std::string& path, std::string_view bytes) {
    const std::wstring target = Wide(path);
    // Moving a file over another needs no right to write to that one: this check keeps it from replacing a protected
    // file.
    HANDLE file = OpenToWrite(target);
    if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_NOT_FOUND) return false;
    const bool isNew = file == INVALID_HANDLE_VALUE || !IsPlainFile(file);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);  // nothing can be moved over an open file
    Protection protection;
    Outcome outcome = Outcome::NotPossible;
    if (isNew || ReadProtection(target, protection)) outcome = WriteBeside(target, bytes, protection);
    if (isNew || outcome != Outcome::NotPossible) return outcome == Outcome::Done;
    file = OpenToWrite(target);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool written = IsPlainFile(file) && WriteWhole(file, bytes) && SetEndOfFile(file);
    CloseHandle(file);
    return written;
}

std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(Wide(folder + "\\" + prefix + "*" + suffix).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return {};
    std::string name;
    do {
        const bool ordinary = (found.dwFileAttributes & NotOrdinary) == 0;
        if (ordinary && Encloses(found.cFileName, Wide(prefix), Wide(suffix))) name = Utf8(found.cFileName);
    } while (name.empty() && FindNextFileW(search, &found));
    FindClose(search);
    return name;
}

}  // namespace corvane::platform
