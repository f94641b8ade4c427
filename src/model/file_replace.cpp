#include "model/file_replace.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <random>

namespace velm {

namespace {

namespace fs = std::filesystem;

// The file a chain of symbolic links ends at (which need not exist yet).
bool follow_links(fs::path& p, std::string& error) {
    std::error_code ec;
    for (int hops = 0; fs::is_symlink(fs::symlink_status(p, ec)); ++hops) {
        if (hops == 40) {
            error = "too many levels of symbolic links";
            return false;
        }
        const fs::path next = fs::read_symlink(p, ec);
        if (ec) {
            error = ec.message();
            return false;
        }
        p = next.is_absolute() ? next : p.parent_path() / next;
    }
    return true;
}

std::string errno_text() { return std::strerror(errno); }

// Blocks the signals that end a process while a save holds a temporary
// file, so that the file is renamed or removed before one takes effect.
class TerminationDeferred {
public:
    TerminationDeferred() {
        sigset_t set;
        sigemptyset(&set);
        for (int s : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) sigaddset(&set, s);
        pthread_sigmask(SIG_BLOCK, &set, &old_);
    }
    ~TerminationDeferred() { pthread_sigmask(SIG_SETMASK, &old_, nullptr); }
    TerminationDeferred(const TerminationDeferred&) = delete;
    TerminationDeferred& operator=(const TerminationDeferred&) = delete;

private:
    sigset_t old_;
};

// A new file beside target, created exclusively; -1 on failure.
int create_beside(const fs::path& target, fs::path& temp) {
    std::random_device rd;
    for (int attempt = 0; attempt < 20; ++attempt) {
        temp = target;
        temp += ".tmp" + std::to_string(rd() % 1000000);
        const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

// Writes, keeps the old file's mode and owner, flushes and closes the new file.
bool fill(int fd, std::string_view bytes, const struct stat* old, const WriteBytes& write, std::string& error) {
    bool ok = write(fd, bytes);
    if (ok && old) {
        ok = ::fchmod(fd, old->st_mode & 07777) == 0;
        // Only a privileged process may give a file away; elsewhere the new
        // file keeps its maker as owner.
        if (ok && ::fchown(fd, old->st_uid, old->st_gid) != 0 && errno != EPERM) ok = false;
    }
    if (ok) ok = ::fsync(fd) == 0;
    if (!ok) error = errno_text();
    if (::close(fd) != 0 && ok) {
        error = errno_text();
        ok = false;
    }
    return ok;
}

}  // namespace

bool write_all(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

std::string save_target_problem(const fs::path& target) {
    fs::path real = target;
    std::string error;
    if (!follow_links(real, error)) return target.string() + ": " + error;
    struct stat st {};
    if (::stat(real.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) return target.string() + ": not a regular file";
    const fs::path dir = real.parent_path().empty() ? fs::path(".") : real.parent_path();
    if (::access(dir.c_str(), W_OK | X_OK) != 0) return target.string() + ": " + errno_text();
    return "";
}

bool replace_file(const fs::path& target, std::string_view bytes, std::string& error, const WriteBytes& write) {
    if (error = save_target_problem(target); !error.empty()) return false;
    fs::path real = target;
    follow_links(real, error);
    struct stat old {};
    const bool existed = ::stat(real.c_str(), &old) == 0;
    const TerminationDeferred deferred;
    fs::path temp;
    const int fd = create_beside(real, temp);
    bool ok = fd >= 0;
    if (!ok) error = errno_text();
    if (ok) ok = fill(fd, bytes, existed ? &old : nullptr, write, error);
    if (ok && ::rename(temp.c_str(), real.c_str()) != 0) {
        error = errno_text();
        ok = false;
    }
    if (!ok) {
        if (fd >= 0) ::unlink(temp.c_str());
        error = target.string() + ": " + error;
    }
    return ok;
}

}  // namespace velm
