// CLibMap: the map library, a project's datums.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/base/CLibGen.h"
#include "platform/coord/CDatumConv.h"

/// The datums that the conversions of a project select from, in lists under two selectors, and the project's
/// own measured datum. All groups of a field book share one map library; a change of it is a change of none
/// of them: nothing is reported to cloud items.
///
/// A new library holds one datum, the identity, at (0, 0, 0).
class GPS_PLATFORM_API CLibMap : public CLibGen, private CConvPart::Whole {
public:
    /// Most datums in one list: AddDat refuses more.
    static constexpr int MAX_DATUM = 4096;

    CLibMap();
    CLibMap(const CLibMap&) = delete;
    CLibMap& operator=(const CLibMap&) = delete;
    ~CLibMap() override;

    /// Number of datums under two selectors; 0 for an unknown pair.
    int GetDatArSize(int sel1, int sel2) const;

    /// The datum at an index; null when there is none. It stays at its address until the library is read anew
    /// or destroyed.
    CDatumConv* GetDatAt(int sel1, int sel2, int index) const;

    /// Appends an identity datum; null when a selector is negative or the list is full.
    CDatumConv* AddDat(int sel1, int sel2);

    /// How fixes of the project are measured when a conversion refers to the library for it: 0 in WGS 84,
    /// else in the datum below.
    int GetTpDtBaseGps() const { return tpDtBase_; }
    void SetTpDtBaseGps(int type);
    CDatumConv* GetConvDtBaseGps() { return &dtBase_; }

    /// Counts up with every change of a datum: conversions tell by it that what they prepared is out of date.
    std::uint64_t GetRevision() const { return revision_; }

    /// The library's record in a project stream; see docs/formats/records.md. Reading replaces all datums.
    void SalvaInFile(ofpstream& out, short version) override;
    void LeggeDaFile(ifpstream& in, short version) override;

private:
    void PartChanged() override { ++revision_; }
    void PartAssigned() override { ++revision_; }

    std::map<std::pair<int, int>, std::vector<std::unique_ptr<CDatumConv>>> datums_;
    int tpDtBase_ = 0;
    CDatumConv dtBase_;
    std::uint64_t revision_ = 1;
};
