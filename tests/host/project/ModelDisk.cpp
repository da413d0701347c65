#include "tests/host/project/ModelDisk.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace test {

namespace {

bool Chance(std::mt19937& random, unsigned oneIn) { return random() % oneIn == 0; }

}  // namespace

// --- for tests ----------------------------------------------------------------------------------------

void ModelDisk::Apply(Directory& names, const Naming& naming) {
    if (!naming.gone.empty()) names.erase(naming.gone);
    if (!naming.made.empty()) names[naming.made] = naming.node;
}

void ModelDisk::Apply(std::string& bytes, const Change& change) {
    if (change.cut) {
        bytes.resize(change.offset);
        return;
    }
    bytes.resize(std::max(bytes.size(), change.offset + change.bytes.size()));
    bytes.replace(change.offset, change.bytes.size(), change.bytes);
}

/// What was not synced, piece by piece: there, not there, or there up to some byte, in any order.
std::string ModelDisk::AfterLoss(const Node& node, std::mt19937& random) {
    std::string bytes = node.synced;
    std::vector<Change> changes = node.changes;
    if (Chance(random, 2)) std::shuffle(changes.begin(), changes.end(), random);
    const bool all = Chance(random, 4);
    for (Change& change : changes) {
        if (!all && Chance(random, 3)) continue;
        if (!all && !change.bytes.empty() && Chance(random, 3))
            change.bytes.resize(random() % change.bytes.size());
        Apply(bytes, change);
    }
    return bytes;
}

std::unique_ptr<ModelDisk> ModelDisk::AfterPowerLoss(std::mt19937& random) const {
    auto after = std::make_unique<ModelDisk>();
    after->links_ = links_;
    after->lying_ = lying_;
    after->lastNode_ = lastNode_;
    after->clock_ = clock_;
    Directory names = syncedNames_;
    // Some disks keep the order of what they do with names, others only each step whole.
    const std::size_t kept = random() % (namings_.size() + 1);
    const bool inOrder = Chance(random, 2);
    for (std::size_t i = 0; i < namings_.size(); ++i) {
        if (inOrder ? i < kept : Chance(random, 2)) Apply(names, namings_[i]);
    }
    std::map<std::uint64_t, NodePtr> nodes;
    for (const auto& [name, node] : names) {
        NodePtr& copy = nodes[node->id];
        if (!copy) {
            copy = std::make_shared<Node>();
            copy->id = node->id;
            copy->bytes = copy->synced = AfterLoss(*node, random);
            copy->mode = node->mode;
            copy->modified = node->modified;
            copy->statusChanged = node->statusChanged;
        }
        after->names_[name] = copy;
    }
    after->syncedNames_ = after->names_;
    return after;
}

void ModelDisk::SyncAll() {
    syncedNames_ = names_;
    namings_.clear();
    for (auto& [name, node] : names_) {
        node->synced = node->bytes;
        node->changes.clear();
    }
}

void ModelDisk::Put(const std::string& path, const std::string& bytes) {
    const NodePtr node = NewNode();
    node->bytes = bytes;
    names_[path] = node;
    SyncAll();
}

void ModelDisk::Damage(const std::string& path, std::size_t bit) {
    Node& node = *names_.at(path);
    node.bytes[bit / 8] = static_cast<char>(node.bytes[bit / 8] ^ (1 << (bit % 8)));
    node.synced = node.bytes;
    node.changes.clear();
}

std::string ModelDisk::Bytes(const std::string& path) const {
    const auto found = names_.find(path);
    return found == names_.end() ? "(no file)" : found->second->bytes;
}

std::vector<std::string> ModelDisk::Names() const {
    std::vector<std::string> names;
    for (const auto& [name, node] : names_) names.push_back(name);
    return names;
}

// --- helpers ------------------------------------------------------------------------------------------

int ModelDisk::Fails(const std::string& what) {
    const long number = operations_++;
    return fault_ ? fault_(number, what) : 0;
}

void ModelDisk::Do(Naming naming) {
    for (const std::string& name : {naming.made, naming.gone}) {
        if (const auto there = names_.find(name); there != names_.end())
            there->second->statusChanged = ++clock_;
    }
    if (naming.node) naming.node->statusChanged = ++clock_;
    Apply(names_, naming);
    namings_.push_back(std::move(naming));
}

ModelDisk::NodePtr ModelDisk::NewNode() {
    auto node = std::make_shared<Node>();
    node->id = ++lastNode_;
    Modified(*node);
    return node;
}

ModelDisk::OpenFile* ModelDisk::Find(int file) {
    const auto found = open_.find(file);
    return found == open_.end() ? nullptr : &found->second;
}

FileOperations::Facts ModelDisk::FactsOf(const Node& node) const {
    Facts facts;
    facts.regular = true;
    facts.size = static_cast<std::int64_t>(node.bytes.size());
    facts.device = 1;
    facts.inode = node.id;
    facts.modifiedNs = node.modified;
    facts.statusChangedNs = node.statusChanged;
    facts.mode = node.mode;
    return facts;
}

// --- operations ---------------------------------------------------------------------------------------

int ModelDisk::Open(const std::string& path, How how, std::uint32_t mode, int& file) {
    if (const int error = Fails("open")) return error;
    auto found = names_.find(path);
    if (found == names_.end()) {
        if (how == How::read) return ENOENT;
        const NodePtr node = NewNode();
        node->mode = mode;
        Do({path, "", node});
        found = names_.find(path);
    } else if (how == How::createNew) {
        return EEXIST;
    }
    file = ++lastFile_;
    open_[file] = {found->second};
    return 0;
}

// Closing always closes, as the system does it.
int ModelDisk::Close(int file) {
    const int error = Fails("close");
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    if (open->holdsLock) open->node->locked = false;
    open_.erase(file);
    return error;
}

int ModelDisk::ReadAt(int file, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) {
    if (const int error = Fails("read")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    const std::string& all = open->node->bytes;
    const auto at = std::min(static_cast<std::size_t>(offset), all.size());
    got = std::min(size, all.size() - at);
    std::memcpy(bytes, all.data() + at, got);
    return 0;
}

// A disk that is full takes half.
int ModelDisk::Write(int file, const void* bytes, std::size_t size) {
    const int error = Fails("write");
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    if (error != 0) size /= 2;
    Change change{open->at, std::string(static_cast<const char*>(bytes), size), false};
    Apply(open->node->bytes, change);
    open->node->changes.push_back(change);
    Modified(*open->node);
    open->at += size;
    return error;
}

int ModelDisk::Truncate(int file, std::int64_t size) {
    if (const int error = Fails("truncate")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    const Change change{static_cast<std::size_t>(size), "", true};
    Apply(open->node->bytes, change);
    open->node->changes.push_back(change);
    Modified(*open->node);
    return 0;
}

int ModelDisk::Sync(int file) {
    if (const int error = Fails("sync")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    if (lying_) return 0;
    open->node->synced = open->node->bytes;
    open->node->changes.clear();
    return 0;
}

int ModelDisk::SyncData(int file) { return Sync(file); }

int ModelDisk::SyncFolder(const std::string&) {
    if (const int error = Fails("sync folder")) return error;
    if (lying_) return 0;
    syncedNames_ = names_;
    namings_.clear();
    return 0;
}

int ModelDisk::Rename(const std::string& from, const std::string& to) {
    if (const int error = Fails("rename")) return error;
    const auto found = names_.find(from);
    if (found == names_.end()) return ENOENT;
    const NodePtr node = found->second;
    if (const auto there = names_.find(to); there != names_.end() && there->second == node) return 0;
    Do({to, from, node});
    return 0;
}

int ModelDisk::Link(const std::string& from, const std::string& to) {
    if (const int error = Fails("link")) return error;
    if (!links_) return EPERM;
    if (!names_.contains(from)) return ENOENT;
    if (names_.contains(to)) return EEXIST;
    Do({to, "", names_[from]});
    return 0;
}

int ModelDisk::Unlink(const std::string& path) {
    if (const int error = Fails("unlink")) return error;
    if (!names_.contains(path)) return ENOENT;
    Do({"", path, nullptr});
    return 0;
}

int ModelDisk::GetFacts(const std::string& path, Facts& facts) {
    if (const int error = Fails("facts")) return error;
    const auto found = names_.find(path);
    if (found == names_.end()) return ENOENT;
    facts = FactsOf(*found->second);
    return 0;
}

int ModelDisk::GetFacts(int file, Facts& facts) {
    if (const int error = Fails("facts")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    facts = FactsOf(*open->node);
    return 0;
}

int ModelDisk::CheckWritable(const std::string& path) {
    if (const int error = Fails("writable")) return error;
    return names_.contains(path) ? 0 : ENOENT;
}

int ModelDisk::CopyRights(int file, const Facts& from) {
    if (const int error = Fails("rights")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    open->node->mode = from.mode;
    return 0;
}

int ModelDisk::Resolve(const std::string& path, std::string& resolved) {
    if (const int error = Fails("resolve")) return error;
    resolved = path;
    return 0;
}

int ModelDisk::Lock(int file) {
    if (const int error = Fails("lock")) return error;
    OpenFile* const open = Find(file);
    if (!open) return EBADF;
    if (open->node->locked && !open->holdsLock) return EWOULDBLOCK;
    open->node->locked = open->holdsLock = true;
    return 0;
}

}  // namespace test
