#include "recorder/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace corvane::recorder {
namespace {

std::FILE* Unbuffered(int descriptor, const char* mode) {
    std::FILE* file = fdopen(descriptor, mode);
    if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

bool SameEntry(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

std::string FollowLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr), std::free);
    return target ? target.get() : path;
}

FileKind KindOf(const std::string& path) {
    struct stat entry {};
    if (stat(path.c_str(), &entry) != 0) return FileKind::None;
    if (S_ISDIR(entry.st_mode)) return FileKind::Folder;
    return S_ISREG(entry.st_mode) ? FileKind::File : FileKind::Device;
}

bool MayReplace(const std::string& path) {
    return access(path.c_str(), W_OK) == 0;
}

bool SameFile(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 && SameEntry(first, second);
}

std::FILE* OpenForWriting(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return descriptor < 0 ? nullptr : Unbuffered(descriptor, "wb");
}

std::FILE* OpenForReading(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor < 0 ? nullptr : Unbuffered(descriptor, "rb");
}

std::FILE* OpenAlone(const std::string& path, bool& taken) {
    constexpr int Tries = 10;
    for (int i = 0; i < Tries; i++) {
        const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (descriptor < 0) return nullptr;
        // Some network drives have no locks; a recording there is better than none.
        taken = flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        struct stat opened {};
        struct stat named {};
        const bool itself =
            fstat(descriptor, &opened) == 0 && stat(path.c_str(), &named) == 0 && SameEntry(opened, named);
        if (!taken && itself && opened.st_nlink == 1) return Unbuffered(descriptor, "r+b");
        close(descriptor);
        if (itself) errno = EMLINK;
        // The recorder that had it has renamed it meanwhile: the name is free for a new one.
        if (taken || itself) return nullptr;
    }
    return nullptr;
}

bool SeekTo(std::FILE* file, int64_t position) {
    return fseeko(file, position, SEEK_SET) == 0;
}

void Forget(std::FILE* file, int64_t from, int64_t bytes) {
    posix_fadvise(fileno(file), from, bytes, POSIX_FADV_DONTNEED);
}

int64_t LengthOf(std::FILE* file) {
    struct stat entry {};
    return fstat(fileno(file), &entry) == 0 ? entry.st_size : -1;
}

bool Flush(std::FILE* file) {
    return fdatasync(fileno(file)) == 0 ||
           errno == EINVAL;  // EINVAL: a file system or device that has nothing to flush
}

bool Move(const std::string& from, const std::string& to) {
    return access(to.c_str(), F_OK) != 0 && std::rename(from.c_str(), to.c_str()) == 0;
}

bool MoveOver(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) return false;
    const size_t slash = to.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : to.substr(0, slash + 1);
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return true;  // a folder that may not be listed
    fsync(descriptor);                // some file systems can't, and do it in time
    close(descriptor);
    return true;
}

bool Remove(const std::string& path) {
    return unlink(path.c_str()) == 0;
}

std::string SystemErrorText() {
    return std::strerror(errno);
}

}  // namespace corvane::recorder
