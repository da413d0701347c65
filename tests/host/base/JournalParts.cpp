#include "tests/host/base/JournalParts.h"

#include <gtest/gtest.h>

namespace test {

bool Note(JournalWriter& journal, std::string_view content, int code) {
    ofpstream* const entry = journal.Open(kBook, code);
    if (!entry) return false;
    entry->WriteBytes(content.data(), content.size());
    journal.Close(entry);
    return true;
}

JournalScan Scanned(ModelDisk& disk, const std::string& path) {
    int file = -1;
    if (disk.Open(path, FileOperations::How::read, 0, file) != 0) return {};
    JournalScan scan = ScanJournal(disk, file, static_cast<std::int64_t>(disk.Bytes(path).size()));
    disk.Close(file);
    return scan;
}

JournalScan ScannedBytes(const std::string& bytes) {
    ModelDisk disk;
    disk.Put(kJournal, bytes);
    return Scanned(disk);
}

std::string ContentIn(const std::string& bytes, const JournalFrame& frame) {
    const std::string payload =
        bytes.substr(static_cast<std::size_t>(frame.payloadOffset), frame.payloadLength);
    EXPECT_EQ(payload.size(), frame.payloadLength);
    EXPECT_EQ(payload.substr(0, 2), kVersion1400);
    return payload.substr(2);
}

std::vector<Edit> Edits(const std::string& bytes, const JournalScan& scan) {
    std::vector<Edit> edits;
    Edit edit;
    for (const JournalFrame& frame : scan.frames) {
        if (frame.code == kEditGivenUp) {
            edit.clear();
            continue;
        }
        edit.push_back(ContentIn(bytes, frame));
        if (frame.more) continue;
        edits.push_back(edit);
        edit.clear();
    }
    return edits;
}

std::vector<Edit> Edits(ModelDisk& disk, const std::string& path) {
    return Edits(disk.Bytes(path), Scanned(disk, path));
}

}  // namespace test
