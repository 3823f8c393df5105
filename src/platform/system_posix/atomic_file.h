#pragma once

#include "core/failure.h"
#include "platform/system_posix/file_stamp.h"
#include "platform/system_posix/open_directory.h"

#include <cstddef>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace tandolin::platform {

/// When a replaced file has to be on the disk.
enum class Flush {
    now,  ///< before `replaceFile` returns
    later ///< the caller flushes the whole file system once (`syncFileSystem`)
};

/// The permissions that the user's mask takes from new files.
unsigned fileModeMask();

/// Replaces the file with the bytes, so that a reader sees the old or the new content and nothing
/// between. The new content is written beside it under a name that starts with "."; that file is
/// removed again on failure and the old one stays as it was. A symbolic link at the path is
/// replaced itself, never followed. The mode 0 keeps the mode of the file that is there, and is
/// 0600 for a new one. Throws what `failureOfErrno` makes.
void replaceFile(const std::filesystem::path& path, std::string_view bytes, unsigned mode,
                 Flush flush);

/// The same for a file of an open directory.
void replaceFile(const OpenDirectory& directory, const std::string& name, std::string_view bytes,
                 unsigned mode, Flush flush);

/// The stamp of what bears this name, a link itself; nothing when nothing does. Throws as above.
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Replaces the file as `replaceFile` does with `Flush::later`, but only while it is the one that
/// `seen` tells of (nothing: while there is none). False when another program was faster: what it
/// wrote stays. There is no moment in which its change could be lost, unless the file system cannot
/// exchange two names.
bool replaceUnchanged(const std::filesystem::path& path, std::string_view bytes, unsigned mode,
                      const std::optional<FileStamp>& seen);

/// Removes the file while it is the one that `seen` tells of, else false, as above. An absent file
/// is a success.
bool removeUnchanged(const std::filesystem::path& path, const FileStamp& seen);

/// Removes a file; an absent one is a success. Throws as above.
void removeFile(const std::filesystem::path& path);

/// The limit for a file that may be of any size.
inline constexpr std::size_t kAnySize = std::numeric_limits<std::size_t>::max() / 2;

/// All bytes of a regular file. Throws Failure kNotFound when there is none, kServerFailed when it
/// is larger than `limit` or no regular file (a device would never end), else as `failureOfErrno`.
std::string readWholeFile(const std::filesystem::path& path, std::size_t limit);

/// The same for a file of an open directory.
std::string readWholeFile(const OpenDirectory& directory, const std::string& name,
                          std::size_t limit);

/// Brings everything on the file system of this file or directory to the disk. Throws as above.
void syncFileSystem(const std::filesystem::path& anyFileOnIt);

/// Makes the directory and what is missing above it, with mode 0700. Throws as above.
void makePrivateDirectories(const std::filesystem::path& directory);

/// Writes all bytes to an open file, however many calls it takes. Throws as above.
void writeAll(int descriptor, std::string_view bytes, const std::filesystem::path& path);

/// The failure of a system call: 61 for a full disk or quota, 70 for a refusal, else 57. The
/// description is `what`, the path and the system's words: "cannot write /a/b: No space left".
Failure failureOfErrno(int errorNumber, const std::filesystem::path& path, TextView what);

} // namespace tandolin::platform
