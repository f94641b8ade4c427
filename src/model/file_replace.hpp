// Replacing a file whole, so that a save that fails half-way (a full disk, a
// write error, a signal) leaves the old file as it was: the bytes go to a new
// file beside the target, which is renamed over it only once they are all
// written and flushed.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace velm {

// Writes all bytes to the open descriptor; false on a failure (errno tells why).
using WriteBytes = std::function<bool(int fd, std::string_view bytes)>;
bool write_all(int fd, std::string_view bytes);

// Why target cannot be saved, or "" when it can: a symbolic link is followed
// to the file it names; that file, when it exists, must be a regular file, and
// its directory must exist and be writable.
std::string save_target_problem(const std::filesystem::path& target);

// Writes bytes in place of target: through a symbolic link to the file it
// names, keeping that file's mode (and owner, where allowed). Termination
// signals wait until the temporary file is renamed or removed. On failure
// returns false with why in error, naming target, and target is untouched.
bool replace_file(const std::filesystem::path& target, std::string_view bytes, std::string& error,
                  const WriteBytes& write = write_all);

}  // namespace velm
