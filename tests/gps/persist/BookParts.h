// What the tests of a whole field-book record share: books that are written, read and written again.
#pragma once

#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
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

/// Groups named G0, G1 …, points P0, P1 … in each.
inline void Fill(CLibGps& book, const std::vector<int>& sizes) {
    for (std::size_t g = 0; g < sizes.size(); ++g) {
        CGrpGps* group = book.AddGrp(false);
        group->SetNomeGrp("G" + std::to_string(g));
        for (int p = 0; p < sizes[g]; ++p)
            book.AddPun(book.GetGrpArSize() - 1, false)->SetNome("P" + std::to_string(p));
    }
}

/// "G0(P0 P1) G1()".
inline std::string Shape(const CLibGps& book) {
    std::string shape;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        shape += (g > 0 ? " " : "") + book.GetGrpAt(g)->GetNomeGrp() + "(";
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            shape += (p > 0 ? " " : "") + book.GetPunAt(g, p)->GetNome();
        shape += ")";
    }
    return shape;
}

/// A value other than the default in each of the three kinds of options, and a file in each list.
inline void SetOptions(CLibGps& book) {
    book.GetOpzLibGps().OpzValore = 17;
    book.GetOpzLibGps().CalcLibCmp = false;
    book.GetOpzLibGps().OpzFlagA = true;
    book.GetOpzListDisGps().GetOpzPun().SetColSimb(12);
    book.GetOpzListDisGps().GetOpzGrp().SetColNome(13);
    book.GetOpzPostProc()->AddDataPtBaseLineDett("rover");
    book.GetOpzPostProc()->AddDataPtBaseLineBase("base");
    book.GetOpzPostProc()->ParPostProc.wPar1 = 99;
}

}  // namespace test
