#include "recorder/file_system.h"

#include <windows.h>
// windows.h first: the other builds on it.
#include <fcntl.h>
#include <io.h>

#include "platform/win32/plain_file.h"
#include "platform/win32/wide_text.h"

namespace corvane::recorder {
namespace {

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class File {
public:
    File(const std::string& path, DWORD access, DWORD share, DWORD creation, DWORD flags = 0)
        : Handle_(CreateFileW(platform::Wide(path).c_str(), access, share, nullptr, creation,
                              FILE_ATTRIBUTE_NORMAL | FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr)) {}
    ~File() {
        if (Opened()) CloseHandle(Handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool Opened() const { return Handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Handle() const { return Handle_; }

    // The same file for the C library, without its own buffer.
    std::FILE* Release(const char* mode) {
        const int descriptor = Opened() ? _open_osfhandle(reinterpret_cast<intptr_t>(Handle_), _O_BINARY) : -1;
        if (descriptor < 0) return nullptr;
        Handle_ = INVALID_HANDLE_VALUE;  // goes with the descriptor
        std::FILE* file = _fdopen(descriptor, mode);
        if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
        return file;
    }

private:
    HANDLE Handle_;
};

bool Rename(const std::string& from, const std::string& to, DWORD flags) {
    return MoveFileExW(platform::Wide(from).c_str(), platform::Wide(to).c_str(), flags) != FALSE;
}

}  // namespace

// Windows XP can't tell where a link leads to. A link is replaced by the recording, and its target left as it is.
std::string FollowLinks(const std::string& path) {
    return path;
}

FileKind KindOf(const std::string& path) {
    const File file(path, 0, ShareAll, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION entry{};
    if (!file.Opened()) return FileKind::None;
    if (GetFileType(file.Handle()) != FILE_TYPE_DISK) return FileKind::Device;
    if (!GetFileInformationByHandle(file.Handle(), &entry)) return FileKind::File;
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::Folder : FileKind::File;
}

bool MayReplace(const std::string& path) {
    return File(path, GENERIC_WRITE | DELETE, ShareAll, OPEN_EXISTING).Opened();
}

bool SameFile(const std::string& one, const std::string& other) {
    const File first(one, 0, ShareAll, OPEN_EXISTING);
    const File second(other, 0, ShareAll, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION a{};
    BY_HANDLE_FILE_INFORMATION b{};
    return first.Opened() && second.Opened() && GetFileInformationByHandle(first.Handle(), &a) &&
           GetFileInformationByHandle(second.Handle(), &b) && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

std::FILE* OpenForWriting(const std::string& path) {
    return File(path, GENERIC_WRITE, ShareAll, OPEN_EXISTING).Release("wb");
}

std::FILE* OpenForReading(const std::string& path) {
    return File(path, GENERIC_READ, ShareAll, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN).Release("rb");
}

// To be moved while it is open, it must be shared for deletion.
std::FILE* OpenAlone(const std::string& path, bool& taken) {
    File file(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_ALWAYS,
              FILE_FLAG_OPEN_REPARSE_POINT);
    taken = !file.Opened() && GetLastError() == ERROR_SHARING_VIOLATION;
    if (!file.Opened() || platform::IsPlainFile(file.Handle())) return file.Release("r+b");
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

// The library's own functions for large files are newer than Windows XP. It has no buffer that they would have to know.
bool SeekTo(std::FILE* file, int64_t position) {
    return _lseeki64(_fileno(file), position, SEEK_SET) == position;
}

// It does so by itself with what was opened for reading in order.
void Forget(std::FILE*, int64_t, int64_t) {}

int64_t LengthOf(std::FILE* file) {
    return _filelengthi64(_fileno(file));
}

bool Flush(std::FILE* file) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    return FlushFileBuffers(handle) != FALSE || GetFileType(handle) != FILE_TYPE_DISK;
}

bool Move(const std::string& from, const std::string& to) {
    return Rename(from, to, 0);
}

bool MoveOver(const std::string& from, const std::string& to) {
    return Rename(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool Remove(const std::string& path) {
    return DeleteFileW(platform::Wide(path).c_str()) != FALSE;
}

std::string SystemErrorText() {
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, GetLastError(),
                                  0, text, 512, nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.')) length--;
    return platform::Utf8(std::wstring_view(text, length));
}

}  // namespace corvane::recorder
