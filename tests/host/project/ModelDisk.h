// ModelDisk: a disk in memory that can refuse any operation, lose its power, and lie.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/os/FileOperations.h"

namespace test {

/// Files of one folder tree without links; folders need not be made. What programs see is what they did. What
/// is left after a loss of power is only sure for what was synced: of the rest, writes are kept, dropped or
/// torn one by one and in any order, and names are as they were after some of the changes.
class ModelDisk : public FileOperations {
public:
    ModelDisk() = default;

    // --- for tests -----------------------------------------------------------------------------------------

    /// Asked before every operation, with its number from 0 and its name; an error number makes it fail.
    using Fault = std::function<int(long number, const std::string& what)>;
    void SetFault(Fault fault) { fault_ = std::move(fault); }

    long GetOperations() const { return operations_; }
    void ResetOperations() { operations_ = 0; }

    /// Second names for a file are not there on this disk.
    void SetLinks(bool links) { links_ = links; }

    /// Syncing does nothing from now on, and says that it did.
    void SetLying(bool lying) { lying_ = lying; }

    /// The disk after its power was lost now.
    std::unique_ptr<ModelDisk> AfterPowerLoss(std::mt19937& random) const;

    /// All that was done is on the disk.
    void SyncAll();

    void Put(const std::string& path, const std::string& bytes);
    /// Turns a bit of a file, on the disk and for programs, without a trace.
    void Damage(const std::string& path, std::size_t bit);
    bool Has(const std::string& path) const { return names_.contains(path); }
    std::string Bytes(const std::string& path) const;
    std::vector<std::string> Names() const;
    int GetOpenFiles() const { return static_cast<int>(open_.size()); }

    // --- operations ----------------------------------------------------------------------------------------

    int Open(const std::string& path, How how, std::uint32_t mode, int& file) override;
    int Close(int file) override;
    int ReadAt(int file, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) override;
    int Write(int file, const void* bytes, std::size_t size) override;
    int Truncate(int file, std::int64_t size) override;
    int Sync(int file) override;
    int SyncData(int file) override;
    int SyncFolder(const std::string& folder) override;
    int Rename(const std::string& from, const std::string& to) override;
    int Link(const std::string& from, const std::string& to) override;
    int Unlink(const std::string& path) override;
    int GetFacts(const std::string& path, Facts& facts) override;
    int GetFacts(int file, Facts& facts) override;
    int CheckWritable(const std::string& path) override;
    int CopyRights(int file, const Facts& from) override;
    int Resolve(const std::string& path, std::string& resolved) override;
    int Lock(int file) override;

private:
    struct Change {
        std::size_t offset;
        std::string bytes;
        bool cut;  // to `offset`
    };
    struct Node {
        std::uint64_t id;
        std::string bytes;
        std::string synced;           // on the disk for sure
        std::vector<Change> changes;  // since then
        std::uint32_t mode = 0600;
        std::int64_t modified = 0;
        std::int64_t statusChanged = 0;  // also when it gets or loses a name
        bool locked = false;
    };
    using NodePtr = std::shared_ptr<Node>;
    using Directory = std::map<std::string, NodePtr>;

    /// A change of names: `made` gets the node, `gone` disappears; one of them may be empty.
    struct Naming {
        std::string made;
        std::string gone;
        NodePtr node;
    };
    struct OpenFile {
        NodePtr node;
        std::size_t at = 0;
        bool holdsLock = false;
    };

    void Modified(Node& node) { node.modified = node.statusChanged = ++clock_; }
    static void Apply(Directory& names, const Naming& naming);
    static void Apply(std::string& bytes, const Change& change);
    static std::string AfterLoss(const Node& node, std::mt19937& random);

    int Fails(const std::string& what);
    void Do(Naming naming);
    NodePtr NewNode();
    OpenFile* Find(int file);
    Facts FactsOf(const Node& node) const;

    Directory names_;
    Directory syncedNames_;
    std::vector<Naming> namings_;  // since then
    std::map<int, OpenFile> open_;
    Fault fault_;
    std::uint64_t lastNode_ = 0;
    std::int64_t clock_ = 0;
    long operations_ = 0;
    int lastFile_ = 100;
    bool links_ = true;
    bool lying_ = false;
};

}  // namespace test
