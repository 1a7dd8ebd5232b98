#include "platform/files.h"

#include <algorithm>

#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

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

// Moving a file over another asks for no right to write to that one, so it would undo its protection.
bool MayBeReplaced(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
    CloseHandle(file);
    return true;
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
    DWORD count = 1;
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
    if (!MayBeReplaced(target)) return false;
    const std::wstring beside = target + L".new";
    const HANDLE file =
        CreateFileW(beside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool written = WriteWhole(file, bytes);
    CloseHandle(file);
    const bool replaced =
        written && MoveFileExW(beside.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    if (!replaced) DeleteFileW(beside.c_str());
    return replaced;
}

}  // namespace corvane::platform
