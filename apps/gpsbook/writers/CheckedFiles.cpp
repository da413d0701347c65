#include "apps/gpsbook/writers/CheckedFiles.h"

#include <cpl_vsi.h>
#include <stdio.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>

namespace gpsbook {

namespace {

constexpr const char* kPrefix = "/vsigpsbook/";

std::atomic<std::int64_t> failures{0};

/// Counts a failure and passes the result on.
int Noted(int result) {
    if (result != 0) ++failures;
    return result;
}

/// GDAL gives names without the prefix; ours are absolute.
std::string RealPath(const char* name) { return std::string("/") + name; }

FILE* FileOf(void* file) { return static_cast<FILE*>(file); }

bool Install() {
    VSIFilesystemPluginCallbacksStruct* calls = VSIAllocFilesystemPluginCallbacksStruct();
    calls->open = [](void*, const char* name, const char* access) -> void* {
        return ::fopen(RealPath(name).c_str(), access);
    };
    calls->stat = [](void*, const char* name, VSIStatBufL* status, int flags) {
        return VSIStatExL(RealPath(name).c_str(), status, flags);
    };
    calls->unlink = [](void*, const char* name) { return ::unlink(RealPath(name).c_str()); };
    calls->tell = [](void* file) { return static_cast<vsi_l_offset>(::ftello(FileOf(file))); };
    calls->seek = [](void* file, vsi_l_offset offset, int whence) {
        return Noted(::fseeko(FileOf(file), static_cast<off_t>(offset), whence));
    };
    calls->read = [](void* file, void* buffer, size_t size, size_t count) {
        return ::fread(buffer, size, count, FileOf(file));
    };
    calls->eof = [](void* file) { return ::feof(FileOf(file)); };
    calls->write = [](void* file, const void* buffer, size_t size, size_t count) {
        const size_t written = ::fwrite(buffer, size, count, FileOf(file));
        if (written != count) ++failures;
        return written;
    };
    calls->flush = [](void* file) { return Noted(::fflush(FileOf(file))); };
    calls->truncate = [](void* file, vsi_l_offset size) {
        return Noted(::ftruncate(::fileno(FileOf(file)), static_cast<off_t>(size)));
    };
    calls->close = [](void* file) { return Noted(::fclose(FileOf(file))); };
    const bool installed = VSIInstallPluginHandler(kPrefix, calls) == 0;
    VSIFreeFilesystemPluginCallbacksStruct(calls);
    return installed;
}

}  // namespace

std::string CheckedFiles::NameOf(const std::string& path) {
    static const bool installed = Install();
    if (!installed) return path;
    return kPrefix + std::filesystem::absolute(path).string().substr(1);
}

std::int64_t CheckedFiles::Failures() { return failures; }

}  // namespace gpsbook
