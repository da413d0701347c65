// CloudSamples: a value of everything that a shared book keeps of its project, and its bytes by hand.
#pragma once

#include "host/project/CloudState.h"
#include "tests/Bytes.h"

namespace test {

inline gpsproject::CloudCommit SampleCommit() {
    return {"c0ffee", 41, "beef", {42, 44}, "DEL;3;1\r\nDEL;4;2", 45};
}

inline Bytes CommitBytes() {
    return Bytes().Text("c0ffee").I64(41).I64(45).Text("beef").I64(2).I64(42).I64(44).Text(
        "DEL;3;1\r\nDEL;4;2");
}

inline gpsproject::CloudClash SampleClash() {
    return {gpsproject::CloudKind::group, 7, "base", 0x1000, "a;b", "c;", 12, "Bruno", 1'000'000'000'000};
}

inline Bytes ClashBytes() {
    return Bytes().U8(3).I64(7).Text("base").U32(0x1000).Text("a;b").Text("c;").I32(12).Text("Bruno").I64(
        1'000'000'000'000);
}

inline gpsproject::CommitAnswer SampleAnswer() {
    return {"c0ffee", 42, {9, 0, 10}, {{2, "no"}, {5, ""}}, {SampleClash(), {}}, "d0d0"};
}

/// Of a clash in which nothing is set: about a point.
inline Bytes EmptyClashBytes() {
    return Bytes().U8(4).I64(0).Text("").U32(0).Text("").Text("").I32(0).Text("").I64(0);
}

inline Bytes AnswerBytes() {
    return Bytes()
        .Text("c0ffee")
        .I64(42)
        .I64(3)
        .I64(9)
        .I64(0)
        .I64(10)
        .I64(2)
        .I64(2)
        .Text("no")
        .I64(5)
        .Text("")
        .I64(2)
        .Raw(ClashBytes())
        .Raw(EmptyClashBytes())
        .Text("d0d0");
}

inline gpsproject::PullPage SamplePage() {
    using gpsproject::CloudKind;
    return {50,
            "cafe",
            false,
            "2:0:17",
            {{CloudKind::group, false, 2, {"1", "", "x;y"}, 46}, {CloudKind::point, true, -1, {}, 47, true}},
            {{46, "nobody"}, {47, "Bruno"}},
            51};
}

inline Bytes PageBytes() {
    return Bytes()
        .I64(50)
        .I64(51)
        .Text("cafe")
        .U8(0)
        .Text("2:0:17")
        .I64(2)  // replies
        .U8(3)
        .U8(0)
        .I32(2)
        .I64(46)
        .U8(0)
        .I64(3)
        .Text("1")
        .Text("")
        .Text("x;y")
        .U8(4)
        .U8(1)
        .I32(-1)
        .I64(47)
        .U8(1)
        .I64(0)
        .I64(2)  // authors
        .I64(46)
        .Text("nobody")
        .I64(47)
        .Text("Bruno");
}

inline gpsproject::CloudState SampleState() {
    gpsproject::CloudState state;
    state.link = {"/s/store", "site", "key"};
    state.revision = 40;
    state.known = 44;
    state.head = "f00d";
    state.own = {41, 43};
    state.again = 12;
    state.commit = SampleCommit();
    state.lastConflict = 8;
    state.conflicts.push_back({3, gpsproject::CloudConflict::Kind::field, SampleClash(), "", 0, "", 0});
    state.conflicts.push_back(
        {8, gpsproject::CloudConflict::Kind::kept, {}, "A", 1, std::string("\0\xFF", 2), 5});
    state.conflicts.push_back({7, gpsproject::CloudConflict::Kind::deletedHere, {}, "", 0, "", 0});
    state.refusals = {{gpsproject::CloudKind::point, 0, "P1", "no"},
                      {gpsproject::CloudKind::group, 6, "", "not there"}};
    return state;
}

inline Bytes StateBytes() {
    return Bytes()
        .Text("/s/store")
        .Text("site")
        .Text("key")
        .I64(40)
        .I64(44)
        .Text("f00d")
        .I64(2)
        .I64(41)
        .I64(43)
        .I64(12)
        .U8(1)
        .Raw(CommitBytes())
        .I32(8)
        .I64(3)  // conflicts
        .I32(3)
        .U8(0)
        .Raw(ClashBytes())
        .Text("")
        .I64(0)
        .Text("")
        .I32(0)
        .I32(8)
        .U8(2)
        .Raw(EmptyClashBytes())
        .Text("A")
        .I64(1)
        .Text(std::string_view("\0\xFF", 2))
        .I32(5)
        .I32(7)
        .U8(1)
        .Raw(EmptyClashBytes())
        .Text("")
        .I64(0)
        .Text("")
        .I32(0)
        .I64(2)  // refusals
        .U8(4)
        .I64(0)
        .Text("P1")
        .Text("no")
        .U8(3)
        .I64(6)
        .Text("")
        .Text("not there");
}

}  // namespace test
