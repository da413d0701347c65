// What the tests of a whole field-book record share: books that are written, read and written again.
#pragma once

#include <string>

#include "gps/model/CLibGps.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

namespace test {

/// A book without a cloud project, with a map library of its own.
struct LooseBook {
    explicit LooseBook(long long drawing = 0) : lib(nullptr, nullptr, nullptr, &map, drawing) {}

    CLibMap map;
    CLibGps lib;
};

/// The field-book record; the argument's version and the stream's are the same unless a second one is given.
inline std::string Section(CLibGps& book, short version, short streamVersion) {
    ofpstream out(streamVersion);
    book.SalvaInFile(out, version, "book", nullptr, nullptr);
    return std::string(out.GetBytes());
}
inline std::string Section(CLibGps& book, short version) { return Section(book, version, version); }

struct Load {
    bool options = true;
    bool entities = true;
    CDrawingsMapper drawings{};
};

/// Reads a record and tells whether all of it was there and nothing behind it was taken.
inline bool Read(CLibGps& book, const std::string& section, short version, short streamVersion,
                 Load load = {}) {
    const std::string bytes = section + "behind";
    ifpstream in(bytes.data(), bytes.size(), streamVersion);
    book.LeggeDaFile(in, load.options, load.entities, version, "book", load.drawings);
    return in.IsOk() && in.GetRemaining() == 6;
}
inline bool Read(CLibGps& book, const std::string& section, short version, Load load = {}) {
    return Read(book, section, version, version, load);
}

}  // namespace test
