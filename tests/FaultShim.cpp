// FaultShim: preloaded into a program, lets one of its calls to the file system fail.
//
// Calls that concern files in the folder SHIM_FOLDER are counted from 0. Call number SHIM_CALL fails with the
// error number SHIM_ERROR; with SHIM_ERROR 0 a read or write takes half of its bytes instead, and with -1 the
// program is killed in front of the call. Number and name of each call are written to the descriptor
// SHIM_LOG.
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int NumberOf(const char* name, int otherwise) {
    const char* const text = std::getenv(name);
    return text ? static_cast<int>(std::strtol(text, nullptr, 10)) : otherwise;
}

template <class Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

constexpr int kFilesMost = 1024;
bool watched[kFilesMost];  // descriptors of files in the folder
int calls = 0;

bool IsWatched(const char* path) {
    const char* const folder = std::getenv("SHIM_FOLDER");
    return folder && path && std::strncmp(path, folder, std::strlen(folder)) == 0;
}
bool IsWatched(int file) { return file >= 0 && file < kFilesMost && watched[file]; }

enum class What { pass, fail, half };

/// What is to become of a call that concerns the folder.
What Next(const char* name) {
    static const auto realWrite = Real<ssize_t(int, const void*, size_t)>("write");
    const int number = calls++;
    if (const int log = NumberOf("SHIM_LOG", -1); log >= 0) {
        const std::string line = std::to_string(number) + " " + name + "\n";
        if (realWrite(log, line.data(), line.size()) < 0) std::abort();
    }
    if (number != NumberOf("SHIM_CALL", -1)) return What::pass;
    const int error = NumberOf("SHIM_ERROR", EIO);
    if (error < 0) kill(getpid(), SIGKILL);
    if (error == 0) return What::half;
    errno = error;
    return What::fail;
}

template <class Function, class... Arguments>
int Call(bool isWatched, const char* name, Arguments... arguments) {
    if (isWatched && Next(name) == What::fail) return -1;
    return Real<Function>(name)(arguments...);
}

}  // namespace

// The system's headers have names for the parameters that no program may use.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(more, mode_t) : 0;
    va_end(more);
    const bool mine = IsWatched(path);
    if (mine && Next("open") == What::fail) return -1;
    const int file = Real<int(const char*, int, ...)>("open")(path, flags, mode);
    if (file >= 0 && file < kFilesMost) watched[file] = mine;
    return file;
}

// A file is closed even when closing reports an error.
int close(int file) {
    const bool fails = IsWatched(file) && Next("close") == What::fail;
    const int error = errno;
    if (file >= 0 && file < kFilesMost) watched[file] = false;
    const int result = Real<int(int)>("close")(file);
    if (!fails) return result;
    errno = error;
    return -1;
}

ssize_t write(int file, const void* bytes, size_t size) {
    if (IsWatched(file)) {
        const What what = Next("write");
        if (what == What::fail) return -1;
        if (what == What::half) size = (size + 1) / 2;
    }
    return Real<ssize_t(int, const void*, size_t)>("write")(file, bytes, size);
}

ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
    if (IsWatched(file)) {
        const What what = Next("pread");
        if (what == What::fail) return -1;
        if (what == What::half) size = (size + 1) / 2;
    }
    return Real<ssize_t(int, void*, size_t, off_t)>("pread")(file, bytes, size, offset);
}

int fsync(int file) { return Call<int(int)>(IsWatched(file), "fsync", file); }
int fdatasync(int file) { return Call<int(int)>(IsWatched(file), "fdatasync", file); }
int ftruncate(int file, off_t size) noexcept {
    return Call<int(int, off_t)>(IsWatched(file), "ftruncate", file, size);
}

// The same, as a library calls them that is compiled for large files.
int open64(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(more, mode_t) : 0;
    va_end(more);
    return open(path, flags, mode);
}
ssize_t pread64(int file, void* bytes, size_t size, off64_t offset) {
    return pread(file, bytes, size, offset);
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t offset) {
    if (IsWatched(file)) {
        const What what = Next("pwrite");
        if (what == What::fail) return -1;
        if (what == What::half) size = (size + 1) / 2;
    }
    return Real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, size, offset);
}
int ftruncate64(int file, off64_t size) noexcept { return ftruncate(file, size); }

int flock(int file, int operation) noexcept {
    return Call<int(int, int)>(IsWatched(file), "flock", file, operation);
}
int fchmod(int file, mode_t mode) noexcept {
    return Call<int(int, mode_t)>(IsWatched(file), "fchmod", file, mode);
}
int fchown(int file, uid_t owner, gid_t group) noexcept {
    return Call<int(int, uid_t, gid_t)>(IsWatched(file), "fchown", file, owner, group);
}
int fstat(int file, struct stat* facts) noexcept {
    return Call<int(int, struct stat*)>(IsWatched(file), "fstat", file, facts);
}
int stat(const char* path, struct stat* facts) noexcept {
    return Call<int(const char*, struct stat*)>(IsWatched(path), "stat", path, facts);
}
int lstat(const char* path, struct stat* facts) noexcept {
    return Call<int(const char*, struct stat*)>(IsWatched(path), "lstat", path, facts);
}
int access(const char* path, int mode) noexcept {
    return Call<int(const char*, int)>(IsWatched(path), "access", path, mode);
}
int rename(const char* from, const char* to) noexcept {
    return Call<int(const char*, const char*)>(IsWatched(from), "rename", from, to);
}
int link(const char* from, const char* to) noexcept {
    return Call<int(const char*, const char*)>(IsWatched(from), "link", from, to);
}
int unlink(const char* path) noexcept { return Call<int(const char*)>(IsWatched(path), "unlink", path); }

char* realpath(const char* path, char* resolved) noexcept {
    if (IsWatched(path) && Next("realpath") == What::fail) return nullptr;
    return Real<char*(const char*, char*)>("realpath")(path, resolved);
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
