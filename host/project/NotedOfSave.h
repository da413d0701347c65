// NotedOfSave: what a field book notes of a save, given back unless it is to stay.
#pragma once

#include <string>

#include "gps/model/CLibGps.h"

namespace gpsproject {

/// Giving back needs no memory: the text has had the room for it before.
class NotedOfSave {
public:
    explicit NotedOfSave(CLibGps& book)
        : book_(book), file_(book.GetNomeFile()), version_(book.GetStreamVersion()) {}
    ~NotedOfSave() {
        if (stays_) return;
        book_.SetNomeFile(file_);
        book_.SetStreamVersion(version_);
    }
    NotedOfSave(const NotedOfSave&) = delete;
    NotedOfSave& operator=(const NotedOfSave&) = delete;

    void Stays() { stays_ = true; }

private:
    CLibGps& book_;
    std::string file_;
    unsigned short version_;
    bool stays_ = false;
};

}  // namespace gpsproject
