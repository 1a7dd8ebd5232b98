// The driver's small files. Paths are UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::platform {

// Path of a file in a folder, whose text may end with a separator, as that of a drive's root does.
std::string PathIn(const std::string& folder, const std::string& name);

// The first `limit` bytes of an ordinary file, or as many as could be read; empty when it can't be opened.
std::string ReadFileStart(const std::string& path, size_t limit);

// Makes these bytes the file's whole content; owner and protection stay. They are first written to a new file beside
// it, so that after a failure (false) the old content is still there. Where no new file can take its place, they are
// written into the file itself, and a failure may leave a part of them there. Nothing is written through a link: a
// symbolic link is replaced, and a file with further names keeps its content under these.
bool ReplaceContent(const std::string& path, std::string_view bytes);

// Name of the first ordinary file (no folder, not hidden, none of the system's) in `folder` whose name begins with
// `prefix` and ends with `suffix`, in the order of the file system, which also decides whether upper and lower case
// differ; empty when there is none.
std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix);

}  // namespace corvane::platform
