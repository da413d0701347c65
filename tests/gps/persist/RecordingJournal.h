// RecordingJournal: a journal in memory, which keeps every entry for itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/base/TmpJournal.h"
#include "platform/base/ofpstream.h"

namespace test {

class RecordingJournal : public TmpJournal {
public:
    struct Entry {
        std::string file;
        int code;
        std::string bytes;  // from the version on
    };

    ofpstream* Open(const char* file, int code) override {
        ++asked;
        if (!takes || stream_) return nullptr;
        auto stream = std::make_unique<ofpstream>(kVersion);
        stream->WriteShort(kVersion);
        entries.push_back({file, code, {}});
        stream_ = std::move(stream);
        return stream_.get();
    }

    void Close(ofpstream* entry) override {
        if (entry != stream_.get()) {
            ++strangers;
            return;
        }
        entries.back().bytes = stream_->GetBytes();
        stream_.reset();
    }

    void Discard(ofpstream* entry) override {
        if (entry != stream_.get()) {
            ++strangers;
            return;
        }
        entries.pop_back();
        stream_.reset();
    }

    bool IsOpen() const { return stream_ != nullptr; }

    static constexpr short kVersion = 1400;
    bool takes = true;
    int asked = 0;
    int strangers = 0;  // streams handed back that are not those of an open entry
    std::vector<Entry> entries;

private:
    std::unique_ptr<ofpstream> stream_;
};

}  // namespace test
