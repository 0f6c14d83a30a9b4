#include "reliability/SystemCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

using pollarix::test::SystemCalls;

namespace {

void Change() {
    if (SystemCalls::killAt > 0 && --SystemCalls::killAt == 0)
        kill(getpid(), SIGKILL);
}

// The bytes that the disk still takes of those that would stand in the file from `at` on.
std::size_t Taken(int file, std::size_t count, std::int64_t at) {
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return count;
    Change();
    if (!SystemCalls::room)
        return count;
    const std::int64_t old = std::max<std::int64_t>(0, status.st_size - at);
    const std::int64_t growth = static_cast<std::int64_t>(count) - old;
    if (growth <= 0)
        return count;
    const std::int64_t taken = std::min(growth, *SystemCalls::room);
    *SystemCalls::room -= taken;
    return count - static_cast<std::size_t>(growth - taken);
}

template <typename Write> ssize_t WriteWhatFits(std::size_t taken, std::size_t count, Write write) {
    if (count > 0 && taken == 0) {
        errno = ENOSPC;
        return -1;
    }
    return write(taken);
}

} // namespace

// These take the place of the system library's functions of the same names.
extern "C" {

ssize_t write(int file, const void* bytes, size_t count) {
    const std::int64_t at = SystemCalls::room ? lseek(file, 0, SEEK_CUR) : 0;
    return WriteWhatFits(Taken(file, count, at), count,
                         [&](size_t taken) { return syscall(SYS_write, file, bytes, taken); });
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t at) {
    return WriteWhatFits(Taken(file, count, at), count, [&](size_t taken) {
        return syscall(SYS_pwrite64, file, bytes, taken, at);
    });
}

int ftruncate64(int file, off64_t size) noexcept {
    Change();
    return static_cast<int>(syscall(SYS_ftruncate, file, size));
}

int fsync(int file) {
    Change();
    return static_cast<int>(syscall(SYS_fsync, file));
}

int fdatasync(int file) {
    Change();
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

int rename(const char* from, const char* to) noexcept {
    Change();
    return static_cast<int>(syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}

int unlink(const char* path) noexcept {
    Change();
    return static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

int usleep(useconds_t microseconds) {
    if (SystemCalls::hurry)
        return 0;
    const timespec time{microseconds / 1000000, static_cast<long>(microseconds % 1000000) * 1000};
    return nanosleep(&time, nullptr);
}

} // extern "C"
