// CLibGps: the GPS field book of a project.
#pragma once

#include <string>
#include <vector>

#include "gps/GpsExport.h"
#include "gps/model/CGrpGps.h"
#include "gps/model/CPunGps.h"
#include "gps/model/PositionIndex.h"
#include "gps/options/COpzLibGps.h"
#include "gps/options/COpzListDisGps.h"
#include "platform/entity/CLibConOri.h"

class CCloudProject;
class CConvCoord;
class CDrawingsMapper;
class CLibMap;
class COpzListDisEgn;
class COpzPostProc;
class COriData;
class CSymbolUsedTracer;

namespace vex {
class CPtr64Mapper;
}

/// The one object through which groups and points are made, found, ordered and deleted. Positions are 0-based
/// places in the list of groups and in a group's list of points.
///
/// Ownership: the field book owns its groups, a group its points. The map library is the host's and must
/// outlive the field book; so must the cloud project, whose tables the items belong to.
///
/// Errors: a position that does not exist is answered with null, 0, -1 or false, never with an exception,
/// except by the two swaps, where it is a programming error and ends the process. Making a group or point
/// may throw std::bad_alloc: nothing has been added then.
///
/// The field book edits and nothing more: notifications, journals, cloud changes and the modified flag are
/// the host's business around each edit. Calls come from one thread.
///
/// A copy holds the same groups and takes no drawing reference: it is for looking at, and its destruction
/// would delete groups that the other one still holds.
class GPS_API CLibGps : public CLibConOri {
public:
    /// `cloud`, `displayOptions`, `orientation` and `map` may be null. `targetDrawing` 0: no drawing.
    CLibGps(CCloudProject* cloud, COpzListDisEgn* displayOptions, COriData* orientation, CLibMap* map,
            long long targetDrawing);
    CLibGps(const CLibGps&) = default;
    CLibGps& operator=(const CLibGps&) = default;

    /// Gives the drawing reference back, then deletes the groups from the last to the first and the
    /// post-processing options.
    ~CLibGps() override;

    // --- groups --------------------------------------------------------------------------------------------

    /// Appends a group with the project's base table, the map library and the present target drawing.
    CGrpGps* AddGrp(bool fromCloud);

    /// Inserts a group at i, from 0 to the number of groups; null, adding nothing, outside.
    CGrpGps* InsGrpAt(int i, bool fromCloud);

    /// Deletes the group's points from the last to the first, then the group. Nothing for an i outside.
    void DelGrpAt(int i);

    CGrpGps* GetGrpAt(int i) const { return HasGrp(i) ? GrpList[static_cast<std::size_t>(i)] : nullptr; }
    int GetGrpArSize() const { return static_cast<int>(GrpList.size()); }

    /// Room for n groups. A hint: n below the present number, or negative, has no effect.
    void GrpArReserve(int n);

    /// Room for n groups more; returns n.
    int GrpArAddReserve(int n);

    /// The position of a group: true and i when the field book holds it, else false and i unchanged.
    /// `group` may be null, and may have been destroyed.
    bool GetIndiciDiGrp(CGrpGps* group, int& i) const;

    /// Exchanges two groups. Requires: both positions exist; else the process ends.
    void GrpGpsSwap(int i, int j) noexcept;

    // --- points --------------------------------------------------------------------------------------------

    /// Appends a point to group g; null for a g outside.
    CPunGps* AddPun(int g, bool fromCloud);

    /// Inserts a point at p, from 0 to the number of points of group g; null, adding nothing, outside.
    CPunGps* InsPunAt(int g, int p, bool fromCloud);

    /// Deletes a point; nothing for a position outside. The point sets are not touched: the host takes the
    /// point out of them before.
    void DelPunAt(int g, int p);
    void DelPunAt(CPunGps* point);

    CPunGps* GetPunAt(int g, int p) const {
        return HasPun(g, p) ? PunList(g)[static_cast<std::size_t>(p)] : nullptr;
    }
    CPunGps* GetPunAt(CGrpGps* group, int p) const;

    /// Number of points of group g, 0 for a g outside.
    int GetPunArSize(int g) const { return HasGrp(g) ? static_cast<int>(PunList(g).size()) : 0; }

    /// Number of points of a group. Intended: -1, not 0, for a group that the field book does not hold, so
    /// that a foreign group is told from an empty one.
    int GetPunArSize(CGrpGps* group) const;

    /// Room for n points in group g; nothing for a g outside or an n below 1.
    void PunArReserve(int g, int n);

    /// Room for n points more in group g; returns n, 0 for a g outside.
    int PunArAddReserve(int g, int n);

    /// The position of a point: true with g and p when the field book holds it. Else false; g may have been
    /// written already when the point's group was found. `point` may be null, but not destroyed.
    bool GetIndiciDiPun(CPunGps* point, int& g, int& p) const;

    /// Exchanges two points of group g. Requires: g and both positions exist; else the process ends.
    void PunGpsSwap(int g, int i, int j) noexcept;

    // --- the current group and point ---------------------------------------------------------------------

    /// Where a new fix belongs: into the last group, in a cloud project into the last one made on this
    /// device. Null when there is none.
    CGrpGps* GetCurrGrp() const;

    /// The current group's last point; null without a current group or points in it.
    CPunGps* GetLastPun() const;

    /// The current group's conversion; null without a current group.
    CConvCoord* GetCurrConvCoord() const;

    /// The same, but null also while the group's processing code says that it is not valid.
    CConvCoord* GetCurrValidConvCoord() const;

    // --- coordinates of one point (gps/coords) -------------------------------------------------------------

    /// Plane coordinates of a point from its fix, through the conversion of group g. They are unset first,
    /// and stay so without a valid conversion, with an unset value among latitude, longitude, height and
    /// antenna height, and when the conversion fails.
    void CalcolaCoordCart(CPunGps* point, int g);

    /// The fix of a point from its plane coordinates and antenna height, through the conversion of group g.
    /// Intended: without a valid conversion the point stays exactly as it was, unlike above; plane
    /// coordinates are recomputed any time, a measured fix is not thrown away. With an unset value, or when
    /// the conversion fails, latitude, longitude and height become unset.
    void CalcolaCoordGeog(CPunGps* point, int g);

    // --- project stream (gps/persist) ----------------------------------------------------------------------

    using CLibConOri::LeggeDaFile;  // the library base's own records, which are empty, stay callable
    using CLibConOri::SalvaInFile;

    /// Writes the field-book record: options, groups, points. `version` is that of the stream. `file`, the
    /// project's file, is remembered (GetNomeFile); null counts as empty. `tracer` learns of the symbols that
    /// are used, `mapper` of the drawing references; both may be null. The modified flag stays as it is.
    /// Ask the stream afterwards whether everything was written.
    void SalvaInFile(ofpstream& out, short version, const char* file, CSymbolUsedTracer* tracer,
                     vex::CPtr64Mapper* mapper);

    /// Reads a field-book record. With `loadOptions` false the option records are passed over, with
    /// `addEntities` false the groups and points; the whole record is consumed all the same. Groups are
    /// appended to those that are there. A group that cannot be made (no memory) ends the adding of groups
    /// and points, a point the adding of points; reading goes on.
    /// Ask the stream afterwards whether everything was there.
    void LeggeDaFile(ifpstream& in, bool loadOptions, bool addEntities, short version, const char* file,
                     CDrawingsMapper& drawings);

    // --- journal between two saves (gps/persist) -----------------------------------------------------------

    /// Each notes one item in the journal (CLibGen::SetTmpJournal) of the project's file: the record of a
    /// changed group or point, or that one is about to be deleted. Nothing is noted of an item that the field
    /// book does not hold (null is none), nor without a journal.
    /// An entry names positions, not items: replay goes in the order of writing.
    void SaveTmpGrpGps(CGrpGps* group, vex::CPtr64Mapper* mapper);
    void SaveTmpPunGps(CPunGps* point);
    void SaveDelGrpGps(CGrpGps* group);
    void SaveDelPunGps(CPunGps* point);

    /// Each replays one entry: the stream stands at its version, and has the header flag of a journal
    /// (ifpstream::GetHeaderFlag). With `apply` false, or without that flag, the entry is read and the field
    /// book stays as it was. An entry of a version that is not known is refused with nothing read but that.
    /// A changed item overwrites the one at its position; positions that are missing up to it are filled with
    /// empty items, none for a negative one. What is applied sets the modified flag.

    /// True when the entry was applied, or was not to be.
    bool LoadTmpGrpGps(ifpstream& in, bool apply, CDrawingsMapper& drawings);
    bool LoadDelGrpGps(ifpstream& in, bool apply);

    /// The point that was changed, else null.
    CEgn* LoadTmpPunGps(ifpstream& in, bool apply);

    /// The address that the deleted point had: to know it by, not to look into. Null when nothing was
    /// applied. `gisHandle` becomes the point's GIS handle, or 0.
    CEgn* LoadDelPunGps(ifpstream& in, bool apply, int& gisHandle);

    // --- exchange files (gps/persist) ----------------------------------------------------------------------

    /// Writes the points of a group, or the groups with their points, at positions `first` up to but not
    /// including `last` into a new file. Intended: the count in it is last - first even where there are
    /// fewer. notCreated also when not everything could be written: the file is then of no use.
    TResActionObj SalvaPuntiInFile(int g, int first, int last, const std::string& file);
    TResActionObj SalvaGruppoInFile(int first, int last, const std::string& file, vex::CPtr64Mapper* mapper);

    /// Inserts the points of a file into group g behind position `after` (-1: in front of all). With
    /// `fromPlane` 0 their plane coordinates are computed from their fixes, else their fixes from the plane
    /// coordinates; noPlaneCoordinates then names points that have none. Each is marked for the cloud.
    /// Intended: an insertion that fails (notInserted) skips the position and not the record, and the last
    /// code wins. A damaged file is not recognised: who wants to know reads it into another book before.
    TResActionObj CaricaPuntiDaFile(int fromPlane, int g, int after, const std::string& file);

    /// Inserts the groups of a file behind position `after`. They get the field book's target drawing.
    /// Intended: a mode other than 0 does nothing and answers done.
    TResActionObj CaricaGruppoDaFile(short mode, int after, const std::string& file,
                                     CDrawingsMapper& drawings);

    // --- other field books (gps/cloud) ---------------------------------------------------------------------

    // A group or point that memory does not suffice for is left out, a group with its points; nobody is told:
    // who wants to know counts.

    /// Appends copies of all groups and points of another field book, as new ones without cloud id. Nothing
    /// for null. Intended: a copied group keeps the creator device of the source.
    void ImportCloudItems(CLibGps* source);

    /// Merges another copy of the same cloud project: what is known here by its cloud id has its gaps filled
    /// (Merge of the tables; std::bad_alloc leaves when memory ends there), what is not is copied and keeps
    /// its cloud id. What was deleted here while the other copy still has it comes back, and its deletion is
    /// not sent any more. Nothing without a cloud project, or for null. Intended: items without cloud id are
    /// added again at every call.
    void MergeCloudItems(CLibGps* source);

    // --- options -------------------------------------------------------------------------------------------

    COpzLibGps& GetOpzLibGps() { return OpzLib; }
    COpzListDisGps& GetOpzListDisGps() { return OpzListDis; }

    /// Post-processing options, made on the first call.
    COpzPostProc* GetOpzPostProc();

    /// Whether they have been made.
    bool HasOpzPostProc() const { return OpzPostProc != nullptr; }

    // --- what the host hands in ----------------------------------------------------------------------------

    CLibMap* GetArchLibMap() const { return ArchLibMap; }

    long long GetTargetDrawing() const { return TargetDrawing; }

    /// Moves the counted reference, as a group does. Groups keep theirs; those made afterwards get this one.
    void SetTargetDrawing(long long id);

    // Version and flag of the last transfer to or from a stream, kept for the host.
    unsigned short GetStreamVersion() const { return StreamVersion; }
    void SetStreamVersion(unsigned short version) { StreamVersion = version; }
    bool GetStreamFlag() const { return StreamFlag; }
    void SetStreamFlag(bool flag) { StreamFlag = flag; }

    bool GetOpzWarning() const { return OpzWarning; }
    void SetOpzWarning(bool on) { OpzWarning = on; }

    /// Intended: does nothing. GPS entities have the dimension they were measured with.
    void ModDimens2d3d(bool&, bool&) {}

private:
    friend struct CLibGpsLayout;  // lets a test look at the order of the fields

    bool HasGrp(int g) const { return g >= 0 && g < GetGrpArSize(); }
    bool HasPun(int g, int p) const { return HasGrp(g) && p >= 0 && p < GetPunArSize(g); }
    std::vector<CPunGps*>& PunList(int g) const { return GrpList[static_cast<std::size_t>(g)]->PunList; }

    void SalvaTutteLeEnt(ofpstream& out, short version, bool cloudFlag, vex::CPtr64Mapper* mapper);
    void LeggeTutteLeEnt(ifpstream& in, bool addEntities, short version, CDrawingsMapper& drawings);
    void SalvaOpzPostProc(ofpstream& out);
    void LeggeOpzPostProc(ifpstream& in, bool loadOptions);

    template <class Write>
    void NoteEntry(int code, Write write);
    CGrpGps* GrpToReplay(int g);
    CPunGps* PunToReplay(int g, int p);

    CGrpGps* CopyGrpFrom(const CGrpGps& source, bool fromCloud, bool keepId);
    void CopyPunFrom(const CPunGps& source, int g, bool fromCloud, bool keepId);

    class PunRun;
    void PlacePunTail(int g, int first, int at);

    COpzLibGps OpzLib;
    COpzListDisGps OpzListDis;
    std::vector<CGrpGps*> GrpList;
    unsigned short StreamVersion = 0;
    bool StreamFlag = false;
    bool OpzWarning = false;
    CLibMap* ArchLibMap;
    COpzPostProc* OpzPostProc = nullptr;
    long long TargetDrawing;

    bool SearchPun(CPunGps* point, int hint, int& g, int& p) const;
    void IndexGroup(int g) const;
    void IndexGroups() const;

    // Where groups and points were last found; filled once positions are asked for.
    mutable PositionIndex index_;
    mutable int lastGroup_ = 0;
    mutable std::size_t groupSteps_ = 0;
};
