#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace corvane::platform {

namespace {

bool WriteWhole(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return fsync(file) == 0;
}

// Renaming asks for no right to the file that it replaces, so it would undo the protection of one.
bool MayBeReplaced(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return errno == ENOENT;
    close(file);
    return true;
}

}  // namespace

std::string PathIn(const std::string& folder, const std::string& name) {
    return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

std::string ReadFileStart(const std::string& path, size_t limit) {
    std::string bytes;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe without a writer would hang
    if (file < 0) return bytes;
    struct stat status = {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        char chunk[65536];
        ssize_t count;
        while (bytes.size() < limit && (count = read(file, chunk, sizeof chunk)) > 0) {
            bytes.append(chunk, static_cast<size_t>(count));
        }
    }
    close(file);
    if (bytes.size() > limit) bytes.resize(limit);
    return bytes;
}

bool ReplaceContent(const std::string& path, std::string_view bytes) {
    if (!MayBeReplaced(path)) return false;
    const std::string beside = path + ".new";
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file < 0) return false;
    const bool written = WriteWhole(file, bytes);
    const bool replaced = close(file) == 0 && written && std::rename(beside.c_str(), path.c_str()) == 0;
    if (!replaced) unlink(beside.c_str());
    return replaced;
}

}  // namespace corvane::platform
