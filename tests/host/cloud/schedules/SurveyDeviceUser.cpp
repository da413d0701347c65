// SurveyDevice: what its user does.
#include "tests/host/cloud/schedules/SurveyDevice.h"

#include <gtest/gtest.h>

#include "gps/cloud/FieldLayout.h"
#include "host/project/ConflictResolution.h"
#include "host/project/HeldBack.h"
#include "tests/host/cloud/schedules/ItemEdits.h"

namespace test {

using gpsproject::CloudConflict;

template <class Do>
void SurveyDevice::Edit(Do edit) {
    gpsproject::Edit one(project_->GetEdits());
    edit();
    const long step = first_ + static_cast<long>(states_.size());
    project_->GetSettings()[kStep] = std::to_string(step);
    project_->GetEdits().SettingsChanged(project_->GetSettings());
    one.Done();
    states_.push_back(model_);
    ++counts.edits;
    Tell("edited");
}

void SurveyDevice::Created(CGrpGps& group) {
    FillAnew(group, random_);
    if (OneIn(2)) {
        group.GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(1, 0, 9 + 6 * Below(3), 500000, 0, 0.9996);
        group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group.SetCodeElab(1);
    }
    const Tag tag = tags_.Next();
    SetTag(group, tag);
    model_.created[tag] = 0;
    Changed(group, kGroupBits);
    Tell("makes group " + std::to_string(tag));
}

void SurveyDevice::Created(CPunGps& point, Tag group) {
    FillAnew(point, random_);
    const Tag tag = tags_.Next();
    SetTag(point, tag);
    model_.created[tag] = group;
    Changed(point, kPointBits);
    Tell("makes point " + std::to_string(tag) + " in " + std::to_string(group));
}

// What is marked to be sent, and what is new, waits with the values that it has now. `bits`: what was edited.
void SurveyDevice::Changed(CGrpGps& group, std::uint32_t bits) {
    const long edit = first_ + static_cast<long>(states_.size());
    for (const FieldGroup& fields : GRP_FIELDS) {
        if ((bits & fields.bit) == 0) continue;
        if (group.GetCloudId() < 1 || (group.GetCloudFlag() & fields.bit))
            model_.pending[TagOf(group)][fields.bit] = {
                OwnText(CloudKind::group, fields.bit, TextOf(group, fields.bit)), edit};
    }
}

void SurveyDevice::Changed(CPunGps& point, std::uint32_t bits) {
    const long edit = first_ + static_cast<long>(states_.size());
    for (const FieldGroup& fields : PUN_FIELDS) {
        if ((bits & fields.bit) == 0) continue;
        if (point.GetCloudId() < 1 || (point.GetCloudFlag() & fields.bit))
            model_.pending[TagOf(point)][fields.bit] = {TextOf(point, fields.bit), edit};
    }
}

// What a program does for its user when a fix or a conversion is edited.
void SurveyDevice::ComputePosition(Place place) {
    CPunGps& point = *GetBook().GetPunAt(place.g, place.p);
    if (!GetBook().GetGrpAt(place.g)->IsCdElabValid()) return;
    GetBook().CalcolaCoordCart(&point, place.g);
    Changed(point, CHG_COORD);
}

bool SurveyDevice::SomeGroup(int& g) {
    if (GetBook().GetGrpArSize() == 0) return false;
    g = Below(GetBook().GetGrpArSize());
    return true;
}

SurveyDevice::Place SurveyDevice::SomePlace() {
    Place place;
    if (!SomeGroup(place.g)) return place;
    const int points = GetBook().GetPunArSize(place.g);
    if (points > 0 && !OneIn(3)) place.p = Below(points);
    return place;
}

SurveyDevice::Place SurveyDevice::PlaceOf(Tag tag) {
    CLibGps& book = GetBook();
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        if (TagOf(*book.GetGrpAt(g)) == tag) return {g, -1};
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            if (TagOf(*book.GetPunAt(g, p)) == tag) return {g, p};
    }
    return {};
}

Tag SurveyDevice::AddGroup() {
    Edit([&] {
        const int g = Below(GetBook().GetGrpArSize() + 1);
        Created(*GetBook().InsGrpAt(g, false));
        project_->GetEdits().GroupInserted(g);
    });
    return tags_.last;
}

Tag SurveyDevice::AddPoint(int g) {
    Edit([&] {
        const int p = Below(GetBook().GetPunArSize(g) + 1);
        Created(*GetBook().InsPunAt(g, p, false), TagOf(*GetBook().GetGrpAt(g)));
        if (OneIn(2)) ComputePosition({g, p});
        project_->GetEdits().PointInserted(g, p);
    });
    return tags_.last;
}

void SurveyDevice::Change(Place place, std::uint32_t bit) {
    Edit([&] {
        Tell("changes bit " + std::to_string(bit) + (place.p < 0 ? " of a group" : " of a point"));
        if (place.p < 0) {
            CGrpGps& group = *GetBook().GetGrpAt(place.g);
            EditField(group, bit, random_);
            Changed(group, bit);
            project_->GetEdits().GroupChanged(place.g);
            const bool compute = bit == CHG_GRP_CONVCOORD && OneIn(2);
            for (int p = 0; compute && p < GetBook().GetPunArSize(place.g); ++p) {
                ComputePosition({place.g, p});
                project_->GetEdits().PointChanged(place.g, p);
            }
        } else {
            CPunGps& point = *GetBook().GetPunAt(place.g, place.p);
            EditField(point, bit, random_);
            Changed(point, bit);
            constexpr std::uint32_t fix = CHG_PUN_LAT | CHG_PUN_LONG | CHG_PUN_ELEV | CHG_PUN_ALTANT;
            if (bit & (fix | CHG_COORD) && OneIn(2)) ComputePosition(place);
            project_->GetEdits().PointChanged(place.g, place.p);
        }
    });
}

void SurveyDevice::ChangeSomething() {
    const Place place = SomePlace();
    if (place.g < 0) return;
    const auto bit = place.p < 0 ? GRP_FIELDS[random_() % GRP_FIELDS.size()].bit
                                 : PUN_FIELDS[random_() % PUN_FIELDS.size()].bit;
    Change(place, bit);
}

// A datum of the map library, with a change of a group that carries it.
void SurveyDevice::ChangeMap() {
    int g = 0;
    if (!SomeGroup(g)) return;
    Edit([&] {
        CGrpGps& group = *GetBook().GetGrpAt(g);
        project_->GetMap().GetDatAt(0, 0, 0)->SetNome("M" + std::to_string(Below(100)));
        project_->GetEdits().MapChanged();
        Tell("changes the map to " + project_->GetMap().GetDatAt(0, 0, 0)->GetNome() + " with group " +
             std::to_string(TagOf(group)));
        group.GetConvCoord()->SetImp(10, static_cast<int>(random_() % 1'000'000));
        Changed(group, CHG_GRP_CONVCOORD);
        model_.mapChanges.emplace_back(
            TagOf(group), OwnText(CloudKind::group, CHG_GRP_CONVCOORD, TextOf(group, CHG_GRP_CONVCOORD)));
        project_->GetEdits().GroupChanged(g);
    });
}

void SurveyDevice::GiveBadText(Place place) {
    static const std::string bad[] = {"a;b", "line\r\nbreak", std::string("z\0z", 3), "\xFF"};
    if (place.g < 0) return;
    Edit([&] {
        const std::string& text = bad[random_() % 4];
        if (place.p < 0) {
            CGrpGps& group = *GetBook().GetGrpAt(place.g);
            OneIn(2) ? group.SetNomeGrp(text) : group.SetNome(text);
            Changed(group, CHG_NOME | CHG_GRP_NOMEGRP);
            project_->GetEdits().GroupChanged(place.g);
        } else {
            CPunGps& point = *GetBook().GetPunAt(place.g, place.p);
            OneIn(2) ? point.SetSecScri(text) : point.SetNome(text);
            Changed(point, CHG_NOME | CHG_SECSCRI);
            project_->GetEdits().PointChanged(place.g, place.p);
        }
    });
}

void SurveyDevice::RepairTexts() {
    const auto held = gpsproject::FindHeld(GetBook(), project_->GetCloud().GetTables());
    const auto repair = [](const std::string& text) {
        return gpsproject::WhyNotCarried(text).empty() ? text : std::string("mended");
    };
    for (const auto& one : held) {
        ++counts.held;
        Edit([&] {
            CGrpGps& group = *GetBook().GetGrpAt(one.g);
            if (one.isGroup) {
                group.SetNome(repair(group.GetNome()));
                group.SetNomeGrp(repair(group.GetNomeGrp()));
                Changed(group, CHG_NOME | CHG_GRP_NOMEGRP);
                project_->GetEdits().GroupChanged(one.g);
            } else {
                CPunGps& point = *GetBook().GetPunAt(one.g, one.p);
                point.SetNome(repair(point.GetNome()));
                point.SetSecScri(repair(point.GetSecScri()));
                Changed(point, CHG_NOME | CHG_SECSCRI);
                project_->GetEdits().PointChanged(one.g, one.p);
            }
        });
    }
}

void SurveyDevice::Delete(Place place) {
    if (place.g < 0) return;
    CLibGps& book = GetBook();
    const auto announce = [&](CCloudItem* item, Tag tag) {
        Tell("deletes item " + std::to_string(tag) + ", id " + std::to_string(item->GetCloudId()));
        item->GetTable()->ItemDeletedLocally(item);
        model_.deleted.insert(tag);
        model_.pending.erase(tag);
    };
    Edit([&] {
        if (place.p >= 0) {
            CPunGps* point = book.GetPunAt(place.g, place.p);
            announce(CPunGps::CloudItemOf(point), TagOf(*point));
            project_->GetEdits().DeletingPoint(place.g, place.p);
            book.DelPunAt(place.g, place.p);
            return;
        }
        for (int p = 0; p < book.GetPunArSize(place.g); ++p) {
            CPunGps* point = book.GetPunAt(place.g, p);
            announce(CPunGps::CloudItemOf(point), TagOf(*point));
        }
        CGrpGps* group = book.GetGrpAt(place.g);
        announce(CGrpGps::CloudItemOf(group), TagOf(*group));
        group->AzzeraPunSet();
        project_->GetEdits().DeletingGroup(place.g);
        book.DelGrpAt(place.g);
    });
}

void SurveyDevice::SwapSomething() {
    int g = 0;
    if (!SomeGroup(g)) return;
    const int groups = GetBook().GetGrpArSize(), points = GetBook().GetPunArSize(g);
    Edit([&] {
        if (points > 1) {
            const int i = Below(points), j = Below(points);
            GetBook().PunGpsSwap(g, i, j);
            project_->GetEdits().PointsSwapped(g, i, j);
        } else {
            const int other = Below(groups);
            GetBook().GrpGpsSwap(g, other);
            project_->GetEdits().GroupsSwapped(g, other);
        }
    });
}

// --- conflicts ---------------------------------------------------------------------------------------------

void SurveyDevice::KeepAsItIs(const CloudConflict& conflict) {
    Edit([&] {
        if (conflict.kind == CloudConflict::Kind::kept) {
            for (const KeptFields& item : KeptIn(conflict)) {
                model_.settled.insert(item.tag);
                model_.pending.erase(item.tag);
            }
        }
        gpsproject::KeepAsItIs(*project_, conflict.number);
    });
}

bool SurveyDevice::TakeTheirs(const CloudConflict& conflict) {
    auto& tables = project_->GetCloud().GetTables();
    CCloudItem* item = nullptr;
    const bool group = conflict.clash.kind == CloudKind::group;
    if (group ? !tables.base.FindItem(conflict.clash.id, item)
              : !tables.points.FindItem(conflict.clash.id, item))
        return false;
    if (!item) return false;
    Edit([&] {
        gpsproject::TakeTheirs(*project_, conflict.number);
        if (group)
            Changed(static_cast<CGrpGps&>(*item), conflict.clash.bit);
        else
            Changed(static_cast<CPunGps&>(*item), conflict.clash.bit);
    });
    return true;
}

bool SurveyDevice::AddAgain(const CloudConflict& conflict) {
    const bool group = conflict.clash.kind == CloudKind::group;
    int g = -1;
    if (!group && !SomeGroup(g)) return false;
    Edit([&] {
        for (const KeptFields& item : KeptIn(conflict)) {
            model_.settled.insert(item.tag);
            model_.pending.erase(item.tag);
        }
        g = gpsproject::AddAgain(*project_, conflict.number, g);
        CGrpGps& into = *GetBook().GetGrpAt(g);
        const auto again = [&](auto& item, Tag itsGroup) {
            SetTag(item, tags_.Next());
            model_.created[TagOf(item)] = itsGroup;
            Changed(item, kGroupBits | kPointBits);
        };
        int p = GetBook().GetPunArSize(g) - 1;
        if (group) {
            again(into, 0);
            project_->GetEdits().GroupChanged(g);
            p = 0;
        }
        for (; p < GetBook().GetPunArSize(g); ++p) {
            again(*GetBook().GetPunAt(g, p), TagOf(into));
            project_->GetEdits().PointChanged(g, p);
        }
    });
    return true;
}

void SurveyDevice::SettleSomething() {
    const auto& conflicts = project_->GetCloud().GetState().conflicts;
    if (conflicts.empty()) return;
    ++counts.settled;
    const CloudConflict conflict = conflicts[random_() % conflicts.size()];
    bool done = false;
    if (OneIn(2)) {
        if (conflict.kind == CloudConflict::Kind::kept) done = AddAgain(conflict);
        if (conflict.kind == CloudConflict::Kind::field) done = TakeTheirs(conflict);
    }
    if (!done) KeepAsItIs(conflict);
}

int SurveyDevice::AddAllAgain() {
    int added = 0;
    const auto conflicts = project_->GetCloud().GetState().conflicts;
    for (const CloudConflict& conflict : conflicts)
        if (conflict.kind == CloudConflict::Kind::kept && AddAgain(conflict)) ++added;
    return added;
}

std::set<Tag> SurveyDevice::KeptTags() {
    std::set<Tag> tags;
    for (const CloudConflict& conflict : project_->GetCloud().GetState().conflicts) {
        if (conflict.kind != CloudConflict::Kind::kept) continue;
        for (const KeptFields& item : KeptIn(conflict)) tags.insert(item.tag);
    }
    return tags;
}

}  // namespace test
