// Files that may be written in place.
#pragma once

#include <windows.h>

#include <cstdint>

namespace corvane::platform {

// An ordinary file, opened with FILE_FLAG_OPEN_REPARSE_POINT: neither a link nor, by another name, also somebody's
// other file. A device or a pipe is none, either: it may wait for somebody. size: how long it is.
inline bool IsPlainFile(HANDLE file, int64_t& size) {
    BY_HANDLE_FILE_INFORMATION entry = {};
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileInformationByHandle(file, &entry)) return false;
    size = int64_t{entry.nFileSizeHigh} << 32 | entry.nFileSizeLow;
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && entry.nNumberOfLinks <= 1;
}

inline bool IsPlainFile(HANDLE file) {
    int64_t size = 0;
    return IsPlainFile(file, size);
}

}  // namespace corvane::platform
