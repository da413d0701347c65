#include "host/project/ContainerWriter.h"

#include "host/project/CheckingSink.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

int ContainerWriter::Put(const std::string& bytes) {
    size_ += static_cast<std::int64_t>(bytes.size());
    return files_.Write(file_, bytes.data(), bytes.size());
}

int ContainerWriter::Begin() { return Put(FileHead()); }

int ContainerWriter::Section(const std::string& name, short version, std::int64_t items,
                             const std::function<void(ofpstream&)>& write) {
    SectionEntry entry;
    entry.name = name;
    entry.version = version;
    entry.items = items;
    if (const int error = Put(SectionHead(entry))) return error;
    entry.offset = size_;

    CheckingSink sink(files_, file_);
    {
        ofpstream out(sink, version);
        write(out);
        if (!out.Close()) return out.GetError();
    }
    entry.length = sink.GetChecks().GetLength();
    entry.crc = sink.GetChecks().GetCrc();
    size_ += entry.length;

    const std::string blocks = BlockList(sink.GetChecks().TakeBlocks());
    if (const int error = Put(SectionEndBytes({entry.length, entry.crc, Crc(blocks)}))) return error;
    if (const int error = Put(blocks)) return error;
    entries_.push_back(entry);
    return 0;
}

int ContainerWriter::End() {
    const std::string table = TableBytes(entries_);
    Trailer trailer;
    trailer.tableOffset = size_;
    trailer.tableLength = static_cast<std::int64_t>(table.size());
    trailer.tableCrc = Crc(table);
    trailer.total = size_ + trailer.tableLength + kTrailerSize;
    if (const int error = Put(table)) return error;
    return Put(TrailerBytes(trailer));
}

}  // namespace gpsproject
