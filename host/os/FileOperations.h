// FileOperations: the calls to the file system that must not lose data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/base/PlatformExport.h"

/// What stands between a project and its disk: every call that saving, opening and recovery make goes
/// through here, so that a test can fail any of them or forget what was not synced.
///
/// Every operation answers 0, or an error number of errno; its outputs then are unchanged unless said
/// otherwise. An interrupted call is repeated and a short one completed: the caller sees all or an error.
class GPS_PLATFORM_API FileOperations {
public:
    /// What the system tells about a file.
    struct Facts {
        bool regular = false;  // an ordinary file
        bool folder = false;
        std::int64_t size = 0;
        std::uint64_t device = 0, inode = 0;               // together: which file it is
        std::int64_t modifiedNs = 0, statusChangedNs = 0;  // since 1970
        std::uint32_t mode = 0;                            // permissions, 0777
        std::uint32_t owner = 0, group = 0;

        bool operator==(const Facts&) const = default;

        /// Whether it is the same file, not written to since. Names that it got or lost do not count.
        bool IsSameContent(const Facts& other) const {
            return device == other.device && inode == other.inode && size == other.size &&
                   modifiedNs == other.modifiedNs;
        }
    };

    enum class How {
        read,       // an existing file; a pipe does not block
        createNew,  // a file that is not there yet, for reading and writing
        share       // for reading and writing, created when it is not there
    };

    FileOperations() = default;
    FileOperations(const FileOperations&) = delete;
    FileOperations& operator=(const FileOperations&) = delete;
    virtual ~FileOperations();

    /// The real file system.
    static FileOperations& System();

    /// `mode`: permissions of a file that is created, less those that the user's mask takes away.
    virtual int Open(const std::string& path, How how, std::uint32_t mode, int& file) = 0;
    virtual int Close(int file) = 0;

    /// Reads up to `size` bytes; fewer only at the end of the file.
    virtual int ReadAt(int file, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) = 0;

    /// Writes all bytes behind those written before. On error some of them may have been written.
    virtual int Write(int file, const void* bytes, std::size_t size) = 0;

    /// Cuts the file, or lengthens it by zeros.
    virtual int Truncate(int file, std::int64_t size) = 0;

    /// Returns when the file's content is on the disk. After an error nothing is known of it: it is not to be
    /// tried again on the same file.
    virtual int Sync(int file) = 0;
    virtual int SyncData(int file) = 0;  // without times and owner

    /// Names of a folder that were made, moved or removed are on the disk.
    virtual int SyncFolder(const std::string& folder) = 0;

    /// Replaces what `to` names, in one step.
    virtual int Rename(const std::string& from, const std::string& to) = 0;

    /// A second name for a file; EEXIST when there is something of that name.
    virtual int Link(const std::string& from, const std::string& to) = 0;
    virtual int Unlink(const std::string& path) = 0;

    virtual int GetFacts(const std::string& path, Facts& facts) = 0;
    virtual int GetFacts(int file, Facts& facts) = 0;

    /// Whether the user may write what stands there.
    virtual int CheckWritable(const std::string& path) = 0;

    /// Gives a file the owner, group and permissions of another one, as far as the user may. When the group
    /// cannot be kept, the new one gets no more rights than everybody.
    virtual int CopyRights(int file, const Facts& from) = 0;

    /// The path without links; the last part need not exist, but may not be a link that leads nowhere.
    virtual int Resolve(const std::string& path, std::string& resolved) = 0;

    /// Locks a file against every other opening of it, also of this process, until it is closed or the
    /// process ends. EWOULDBLOCK when it is locked.
    virtual int Lock(int file) = 0;
};
