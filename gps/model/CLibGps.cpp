#include "gps/model/CLibGps.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "gps/model/FindFromHint.h"
#include "gps/options/COpzPostProc.h"
#include "platform/cad/COrkaEng.h"
#include "platform/entity/CCloudManager.h"
#include "platform/entity/CCloudProject.h"

namespace {

CCloudTable* BaseTable(const CCloudProject* cloud) { return cloud ? cloud->GetGpsBaseTable() : nullptr; }
CCloudTable* PointTable(const CCloudProject* cloud) { return cloud ? cloud->GetGpsPntTable() : nullptr; }

// Hands a new object over to a list at a position. When the list cannot grow, the object is destroyed.
template <class T>
T* InsertAt(std::vector<T*>& list, int at, std::unique_ptr<T> item) {
    list.insert(list.begin() + at, item.get());
    return item.release();
}

// A reservation is a hint: a count that memory cannot hold is left to the insertions to refuse.
template <class T>
void ReserveAtLeast(std::vector<T*>& list, std::size_t n) {
    try {
        list.reserve(n);
    } catch (const std::length_error&) {
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

CLibGps::CLibGps(CCloudProject* cloud, COpzListDisEgn* displayOptions, COriData* orientation, CLibMap* map,
                 long long targetDrawing)
    : CLibConOri(cloud, orientation),
      OpzListDis(displayOptions),
      ArchLibMap(map),
      TargetDrawing(targetDrawing) {
    COrkaEng::AddDrawingRefUsage(TargetDrawing);  // with 0 too
}

CLibGps::~CLibGps() {
    COrkaEng::SubDrawingRefUsage(TargetDrawing);  // with 0 too
    index_.Clear();
    for (int i = GetGrpArSize() - 1; i >= 0; --i) DelGrpAt(i);
    delete OpzPostProc;
}

COpzPostProc* CLibGps::GetOpzPostProc() {
    if (!OpzPostProc) OpzPostProc = new COpzPostProc;
    return OpzPostProc;
}

// --- groups ------------------------------------------------------------------------------------------------

CGrpGps* CLibGps::AddGrp(bool fromCloud) { return InsGrpAt(GetGrpArSize(), fromCloud); }

CGrpGps* CLibGps::InsGrpAt(int i, bool fromCloud) {
    if (i < 0 || i > GetGrpArSize()) return nullptr;
    auto group =
        std::make_unique<CGrpGps>(BaseTable(GetCloudProject()), fromCloud, ArchLibMap, TargetDrawing);
    CGrpGps* inserted = InsertAt(GrpList, i, std::move(group));
    if (!index_.IsEmpty()) index_.Set(inserted, PositionIndex::kGroups, i);
    return inserted;
}

void CLibGps::DelGrpAt(int i) {
    if (!HasGrp(i)) return;
    for (int j = GetPunArSize(i) - 1; j >= 0; --j) DelPunAt(i, j);
    CGrpGps* group = GrpList[static_cast<std::size_t>(i)];
    index_.Erase(group);
    delete group;
    GrpList.erase(GrpList.begin() + i);
}

void CLibGps::GrpArReserve(int n) {
    if (n > 0) ReserveAtLeast(GrpList, static_cast<std::size_t>(n));
}

int CLibGps::GrpArAddReserve(int n) {
    if (n > 0) ReserveAtLeast(GrpList, GrpList.size() + static_cast<std::size_t>(n));
    return n;
}

bool CLibGps::GetIndiciDiGrp(CGrpGps* group, int& i) const {
    if (!group) return false;
    if (GetGrpAt(lastGroup_) == group) {  // the same group is asked for again and again
        i = lastGroup_;
        return true;
    }
    const auto place = index_.Find(group);
    const int hint = place ? place->at : 0;
    const int found = FindFromHint(GrpList, group, hint);
    if (found < 0) return false;
    groupSteps_ += static_cast<std::size_t>(std::abs(found - hint));
    // Once the searches have cost as much as noting all positions anew, that is done.
    if (groupSteps_ > GrpList.size())
        IndexGroups();
    else
        index_.Set(group, PositionIndex::kGroups, found);
    lastGroup_ = found;
    i = found;
    return true;
}

void CLibGps::GrpGpsSwap(int i, int j) noexcept {
    std::swap(GrpList.at(static_cast<std::size_t>(i)), GrpList.at(static_cast<std::size_t>(j)));
}

// --- points ------------------------------------------------------------------------------------------------

CPunGps* CLibGps::AddPun(int g, bool fromCloud) { return InsPunAt(g, GetPunArSize(g), fromCloud); }

CPunGps* CLibGps::InsPunAt(int g, int p, bool fromCloud) {
    if (!HasGrp(g) || p < 0 || p > GetPunArSize(g)) return nullptr;
    CGrpGps* group = GrpList[static_cast<std::size_t>(g)];
    auto point = std::make_unique<CPunGps>(PointTable(GetCloudProject()), fromCloud, group);
    CPunGps* inserted = InsertAt(group->PunList, p, std::move(point));
    group->moves_.Inserted(p, GetPunArSize(g) - 1);
    if (!index_.IsEmpty()) index_.Set(inserted, g, group->moves_.Noted(p));
    return inserted;
}

void CLibGps::DelPunAt(int g, int p) {
    if (!HasPun(g, p)) return;
    std::vector<CPunGps*>& list = PunList(g);
    GrpList[static_cast<std::size_t>(g)]->moves_.Deleted(p, GetPunArSize(g));
    index_.Erase(list[static_cast<std::size_t>(p)]);
    delete list[static_cast<std::size_t>(p)];
    list.erase(list.begin() + p);
}

void CLibGps::DelPunAt(CPunGps* point) {
    int g = -1, p = -1;
    GetIndiciDiPun(point, g, p);
    if (g >= 0 && p >= 0) DelPunAt(g, p);
}

CPunGps* CLibGps::GetPunAt(CGrpGps* group, int p) const {
    int g = -1;
    return GetIndiciDiGrp(group, g) ? GetPunAt(g, p) : nullptr;
}

int CLibGps::GetPunArSize(CGrpGps* group) const {
    int g = -1;
    return GetIndiciDiGrp(group, g) ? GetPunArSize(g) : -1;
}

void CLibGps::PunArReserve(int g, int n) {
    if (HasGrp(g) && n > 0) ReserveAtLeast(PunList(g), static_cast<std::size_t>(n));
}

int CLibGps::PunArAddReserve(int g, int n) {
    if (!HasGrp(g)) return 0;
    if (n > 0) ReserveAtLeast(PunList(g), PunList(g).size() + static_cast<std::size_t>(n));
    return n;
}

bool CLibGps::GetIndiciDiPun(CPunGps* point, int& g, int& p) const {
    if (!point) return false;
    int hint = 0;
    if (const auto place = index_.Find(point)) {
        // The common case, which does not even look at the point, unless some point was ever assigned the
        // owner of another one: a point whose owner is not the group it stands in is not found.
        const auto group = static_cast<std::size_t>(place->group);
        if (group < GrpList.size()) {
            const CGrpGps& g0 = *GrpList[group];
            hint = g0.moves_.Now(place->at);
            if (static_cast<std::size_t>(hint) < g0.PunList.size() &&
                g0.PunList[static_cast<std::size_t>(hint)] == point &&
                (!CPunGps::ownersAssigned_.load(std::memory_order_relaxed) || point->Group == &g0)) {
                g = place->group;
                p = hint;
                return true;
            }
        }
    }

    return SearchPun(point, hint, g, p);
}

// Apart from the common case, which is the shorter for it.
bool CLibGps::SearchPun(CPunGps* point, int hint, int& g, int& p) const {
    // The owner may be gone when the point is a detached copy: it is compared, never looked into, before it
    // is found in the list.
    if (!GetIndiciDiGrp(point->Group, g)) return false;
    const CGrpGps& owner = *point->Group;
    const int found = FindFromHint(owner.PunList, point, hint);
    if (found < 0) return false;
    p = found;
    owner.searchSteps_ += static_cast<std::size_t>(std::abs(found - hint));
    // Once the searches have cost as much as noting all positions of the group anew, that is done.
    if (owner.searchSteps_ > owner.PunList.size())
        IndexGroup(g);
    else
        index_.Set(point, g, owner.moves_.Noted(found));
    return true;
}

void CLibGps::IndexGroups() const {
    for (std::size_t k = 0; k < GrpList.size(); ++k)
        index_.Set(GrpList[k], PositionIndex::kGroups, static_cast<int>(k));
    groupSteps_ = 0;
}

void CLibGps::IndexGroup(int g) const {
    const CGrpGps& group = *GetGrpAt(g);
    for (std::size_t k = 0; k < group.PunList.size(); ++k)
        index_.Set(group.PunList[k], g, static_cast<int>(k));
    group.moves_.Clear();
    group.searchSteps_ = 0;
}

void CLibGps::PunGpsSwap(int g, int i, int j) noexcept {
    CGrpGps& group = *GrpList.at(static_cast<std::size_t>(g));
    std::vector<CPunGps*>& list = group.PunList;
    std::swap(list.at(static_cast<std::size_t>(i)), list.at(static_cast<std::size_t>(j)));
    if (index_.IsEmpty()) return;
    for (const int at : {i, j}) index_.Set(list[static_cast<std::size_t>(at)], g, group.moves_.Noted(at));
}

// The points of group g from `first` on were appended, and belong at `at`, in front of the others.
void CLibGps::PlacePunTail(int g, int first, int at) {
    std::vector<CPunGps*>& list = PunList(g);
    if (at == first || first == GetPunArSize(g)) return;
    std::rotate(list.begin() + at, list.begin() + first, list.end());
    if (!index_.IsEmpty()) IndexGroup(g);
}

// --- the current group and point ---------------------------------------------------------------------------

CGrpGps* CLibGps::GetCurrGrp() const {
    const bool isCloud = GetCloudProject() && GetCloudProject()->IsCloud();
    const int devId = CCloudManager::GetInstance()->GetDevId();  // asked on every call
    for (auto it = GrpList.rbegin(); it != GrpList.rend(); ++it)
        if (!isCloud || CGrpGps::CloudItemOf(*it)->IsCloudMine(devId)) return *it;
    return nullptr;
}

CPunGps* CLibGps::GetLastPun() const {
    const CGrpGps* group = GetCurrGrp();
    return group && !group->PunList.empty() ? group->PunList.back() : nullptr;
}

CConvCoord* CLibGps::GetCurrConvCoord() const {
    CGrpGps* group = GetCurrGrp();
    return group ? group->GetConvCoord() : nullptr;
}

CConvCoord* CLibGps::GetCurrValidConvCoord() const {
    CGrpGps* group = GetCurrGrp();
    return group && group->IsCdElabValid() ? group->GetConvCoord() : nullptr;
}

void CLibGps::SetTargetDrawing(long long id) {
    if (TargetDrawing != 0) COrkaEng::SubDrawingRefUsage(TargetDrawing);
    TargetDrawing = 0;  // should the engine fail now, no reference is held that was never taken
    if (id != 0) COrkaEng::AddDrawingRefUsage(id);
    TargetDrawing = id;
}
