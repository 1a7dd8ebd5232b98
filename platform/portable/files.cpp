#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

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

enum class Outcome { Done, Failed, NotPossible };

// NotPossible: no file with the same owner and protection can take the file's place.
Outcome WriteBeside(const std::string& path, std::string_view bytes, const struct stat* held) {
    const std::string beside = path + ".new";
    unlink(beside.c_str());  // left by a run that was interrupted
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) return Outcome::NotPossible;
    const bool alike =
        held == nullptr || (fchown(file, held->st_uid, held->st_gid) == 0 && fchmod(file, held->st_mode & 07777) == 0);
    bool written = alike && WriteWhole(file, bytes);
    written = close(file) == 0 && written;
    if (written && std::rename(beside.c_str(), path.c_str()) == 0) return Outcome::Done;
    unlink(beside.c_str());
    return alike && !written ? Outcome::Failed : Outcome::NotPossible;
}

}  // namespace

std::string PathIn(const std::string& folder, const std::string& name) {
    return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

std::string ReadFileStart(const std::string& path, size_t limit) {
    std::string bytes;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe would block otherwise
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
    // Renaming needs no right to the file that it replaces: without this check it would replace a protected file.
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (file < 0 && errno != ENOENT && errno != ELOOP) return false;  // ELOOP: a link
    struct stat held = {};
    if (file < 0 || fstat(file, &held) != 0 || !S_ISREG(held.st_mode) || held.st_nlink > 1) {
        if (file >= 0) close(file);
        return WriteBeside(path, bytes, nullptr) == Outcome::Done;
    }
    Outcome outcome = WriteBeside(path, bytes, &held);
    if (outcome == Outcome::NotPossible && WriteWhole(file, bytes) &&
        ftruncate(file, static_cast<off_t>(bytes.size())) == 0) {
        outcome = Outcome::Done;
    }
    close(file);
    return outcome == Outcome::Done;
}

std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix) {
    // Not with std::filesystem, which ends the process when memory runs out.
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), &closedir);
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        struct stat file;
        if (name.size() >= prefix.size() + suffix.size() && name.starts_with(prefix) && name.ends_with(suffix) &&
            fstatat(dirfd(entries.get()), entry->d_name, &file, 0) == 0 && S_ISREG(file.st_mode)) {
            return std::string(name);
        }
    }
    return {};
}

}  // namespace corvane::platform
