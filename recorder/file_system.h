// Files as a recording needs them: kept from others while they grow, and put in their place in one step. Names are
// UTF-8. win32/ or posix/ is linked in.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace corvane::recorder {

// The file that a name leads to: symbolic links are followed where the system lets a program do so.
std::string FollowLinks(const std::string& path);

enum class FileKind { None, File, Folder, Device };  // a device is whatever can't be replaced by a file, a pipe too
FileKind KindOf(const std::string& path);
// Whether the user may replace this file, and no other program keeps it from being replaced.
bool MayReplace(const std::string& path);
// Whether both names lead to one file. False when either leads to none.
bool SameFile(const std::string& one, const std::string& other);

// For writing at its start, without the library's own buffer. Null: see SystemErrorText.
std::FILE* OpenForWriting(const std::string& path);
// For reading a file, in the same way. Others may write it meanwhile, rename or delete it.
std::FILE* OpenForReading(const std::string& path);
// The same for a file, which is created where there is none and keeps what is in it. No other recorder can open it
// until it is closed, and when this program ends in whatever way, the system closes it; everybody may read it. Null
// with `taken` set: another recorder has it. Also null for a link, symbolic or another name of a file: what it leads to
// is not what is to be written.
std::FILE* OpenAlone(const std::string& path, bool& taken);

// Where the next bytes are written or read, counted from the file's start.
bool SeekTo(std::FILE* file, int64_t position);
// These bytes of a file won't be read again soon: the system need not keep them in memory, where others have better use
// for it.
void Forget(std::FILE* file, int64_t from, int64_t bytes);
// Bytes of the file; -1: unknown.
int64_t LengthOf(std::FILE* file);
// Everything that was written is on the disk afterwards.
bool Flush(std::FILE* file);
// Renames a file, also one that this program has open. MoveOver replaces a file of the new name,
// and lets that reach the disk before anything that is written later.
bool Move(const std::string& from, const std::string& to);
bool MoveOver(const std::string& from, const std::string& to);
bool Remove(const std::string& path);

// Why the last of these calls failed, in the system's words.
std::string SystemErrorText();

}  // namespace corvane::recorder
