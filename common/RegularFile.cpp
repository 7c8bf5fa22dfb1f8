#include "common/RegularFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string FileKind(mode_t mode) {
    return S_ISDIR(mode)    ? "a directory"
           : S_ISFIFO(mode) ? "a FIFO"
           : S_ISCHR(mode)  ? "a character device"
           : S_ISBLK(mode)  ? "a block device"
           : S_ISSOCK(mode) ? "a socket"
                            : "something";
}

// Opens path for reading without waiting, and keeps it open only when it is
// a regular file; -1 with the reason otherwise.
int OpenRegular(const char* path, std::string& reason, bool* notRegular = nullptr) {
    if (notRegular != nullptr)
        *notRegular = false;
    if (path == nullptr) {
        reason = "no file name";
        return -1;
    }
    const int fd = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        reason = std::strerror(errno);
        return -1;
    }
    struct stat status;
    if (::fstat(fd, &status) != 0) {
        reason = std::strerror(errno);
        ::close(fd);
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        reason = FileKind(status.st_mode) + ", not a regular file";
        if (notRegular != nullptr)
            *notRegular = true;
        ::close(fd);
        return -1;
    }
    // Reads of a regular file never wait; the flag is cleared all the same,
    // for the stream that takes the descriptor over.
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags >= 0)
        ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);
    return fd;
}

} // namespace

std::FILE* xunOpenRegularFile_(const char* path, const char* mode, std::string& reason,
                               bool* notRegular) {
    const int fd = OpenRegular(path, reason, notRegular);
    if (fd < 0)
        return nullptr;
    std::FILE* file = ::fdopen(fd, mode);
    if (file == nullptr) {
        reason = std::strerror(errno);
        ::close(fd);
    }
    return file;
}

bool xunReadRegularFile_(const char* path, std::vector<unsigned char>& bytes, std::string& reason) {
    const int fd = OpenRegular(path, reason);
    if (fd < 0)
        return false;
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};
    struct stat status;
    const std::size_t expected =
        ::fstat(fd, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
    bytes.clear();
    bytes.resize(expected);
    std::size_t filled = 0;
    for (;;) {
        // A file that grows while it is read is read to its end.
        if (filled == bytes.size())
            bytes.resize(bytes.size() + 65536);
        const ssize_t got = ::read(fd, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            reason = std::strerror(errno);
            return false;
        }
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return true;
}
