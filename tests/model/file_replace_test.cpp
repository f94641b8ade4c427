// Saving in place of a file: the old file survives every failure, links are
// followed, the mode is kept, and no temporary file is left behind.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sstream>

#include "model/file_replace.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

namespace fs = std::filesystem;

std::string bytes_of(const fs::path& f) {
    std::ifstream in(f, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void put(const fs::path& f, const std::string& text) { std::ofstream(f, std::ios::binary) << text; }

int entries(const fs::path& dir) {
    int n = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) ++n;
    return n;
}

// A disk that fills after `room` bytes.
WriteBytes failing_after(std::size_t room) {
    return [room](int fd, std::string_view bytes) {
        if (!write_all(fd, bytes.substr(0, room))) return false;
        if (bytes.size() <= room) return true;
        errno = ENOSPC;
        return false;
    };
}

TEST(FileReplace, AWriteFailingHalfWayLeavesTheOldFile) {
    const fs::path dir = scratch_dir("replace_fail");
    const fs::path file = dir / "plant.vdf";
    put(file, "old contents");
    const std::string next(100000, 'x');
    for (std::size_t room : {std::size_t{0}, std::size_t{1}, std::size_t{4096}, next.size() - 1}) {
        std::string error;
        EXPECT_FALSE(replace_file(file, next, error, failing_after(room))) << room;
        EXPECT_EQ(error, file.string() + ": " + std::strerror(ENOSPC));
        EXPECT_EQ(bytes_of(file), "old contents") << room;
        EXPECT_EQ(entries(dir), 1) << "a temporary file was left after " << room << " bytes";
    }
    std::string error;
    EXPECT_TRUE(replace_file(file, next, error, failing_after(next.size())));
    EXPECT_EQ(bytes_of(file), next);
}

TEST(FileReplace, ALinkIsFollowedAndTheModeKept) {
    const fs::path dir = scratch_dir("replace_link");
    fs::create_directories(dir / "real");
    const fs::path real = dir / "real" / "plant.vdf";
    put(real, "old");
    ::chmod(real.c_str(), 0640);
    fs::create_symlink("real/plant.vdf", dir / "link.vdf");
    std::string error;
    ASSERT_TRUE(replace_file(dir / "link.vdf", "new", error)) << error;
    EXPECT_TRUE(fs::is_symlink(dir / "link.vdf"));
    EXPECT_EQ(bytes_of(real), "new");
    struct stat st {};
    ASSERT_EQ(::stat(real.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(entries(dir / "real"), 1);
}

TEST(FileReplace, TargetsThatAreNotRegularFilesAreRefused) {
    const fs::path dir = scratch_dir("replace_refuse");
    ASSERT_EQ(::mkfifo((dir / "fifo").c_str(), 0644), 0);
    fs::create_directories(dir / "folder");
    fs::create_symlink("folder", dir / "to_folder");
    fs::create_symlink("loop", dir / "loop");
    const struct Row {
        const char* name;
        std::string why;
    } rows[] = {
        {"fifo", "not a regular file"},
        {"folder", "not a regular file"},
        {"to_folder", "not a regular file"},
        {"loop", "too many levels of symbolic links"},
        {"missing/plant.vdf", std::strerror(ENOENT)},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(save_target_problem(dir / r.name), (dir / r.name).string() + ": " + r.why);
        std::string error;
        EXPECT_FALSE(replace_file(dir / r.name, "new", error));
        EXPECT_EQ(error, (dir / r.name).string() + ": " + r.why);
    }
    EXPECT_TRUE(fs::is_fifo(dir / "fifo"));
    EXPECT_EQ(entries(dir), 4);
    EXPECT_EQ(save_target_problem(dir / "plant.vdf"), "");
}

TEST(FileReplace, ASignalDuringASaveLeavesNoTemporaryFile) {
    const fs::path dir = scratch_dir("replace_signal");
    const fs::path file = dir / "plant.vdf";
    put(file, "old contents");
    const auto killed_half_way = [](int fd, std::string_view bytes) {
        write_all(fd, bytes.substr(0, bytes.size() / 2));
        std::raise(SIGTERM);
        return write_all(fd, bytes.substr(bytes.size() / 2));
    };
    EXPECT_EXIT(
        {
            std::string error;
            replace_file(file, std::string(50000, 'x'), error, killed_half_way);
            std::_Exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(entries(dir), 1);
    const std::string now = bytes_of(file);
    EXPECT_TRUE(now == "old contents" || now == std::string(50000, 'x'));
}

}  // namespace
}  // namespace velm
