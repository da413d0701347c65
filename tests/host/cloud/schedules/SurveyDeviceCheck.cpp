// SurveyDevice: the checks.
#include "tests/host/cloud/schedules/SurveyDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "host/project/KeptItem.h"
#include "platform/base/ofpstream.h"
#include "platform/coord/CLibMap.h"

namespace test {

using gpsproject::CloudConflict;

// What a commit carried that was answered does not wait any more, but for what was edited since it began.
void SurveyDevice::ForgetAnswered() {
    const CloudCommit* underWay = project_->GetCloud().GetCommit();
    for (const auto& [id, lastEdit] : commits_) {
        const SharedSurvey::Fields* fields = survey_.TakenBy(id);
        if (!fields || (underWay && underWay->id == id)) continue;
        for (const auto& [tag, bit] : *fields) {
            const auto item = model_.pending.find(tag);
            if (item == model_.pending.end()) continue;
            const auto waiting = item->second.find(bit);
            if (waiting == item->second.end() || waiting->second.edit > lastEdit) continue;
            item->second.erase(waiting);
            if (item->second.empty()) model_.pending.erase(item);
        }
    }
}

void SurveyDevice::Check() {
    CLibGps& book = GetBook();
    ForgetAnswered();
    std::map<Tag, Place> places;
    const auto note = [&](Tag tag, const CCloudItem& item, Place place) {
        const std::int64_t id = item.GetCloudId();
        EXPECT_TRUE(places.emplace(tag, place).second) << Where() << ": item " << tag << " is there twice";
        EXPECT_FALSE(model_.deleted.contains(tag)) << Where() << ": item " << tag << " has come back";
        if (id < 1) return;
        const auto its = survey_.GetTags().find(id);
        const bool right = its != survey_.GetTags().end() && its->second == tag;
        EXPECT_TRUE(right) << Where() << ": item " << tag << " has the id " << id << " of another one";
        std::uint32_t waiting = 0;
        if (const auto pending = model_.pending.find(tag); pending != model_.pending.end())
            for (const auto& [bit, value] : pending->second) waiting |= bit;
        if ((item.GetCloudFlag() & ~waiting) == CHG_COORD && place.p >= 0 && IsOfFix(place))
            return Changed(*book.GetPunAt(place.g, place.p), CHG_COORD);
        EXPECT_EQ(item.GetCloudFlag() & ~waiting, 0U)
            << Where() << ": item " << tag << " is to be sent, and has not been edited since it was";
    };
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        note(TagOf(*book.GetGrpAt(g)), *book.GetGrpAt(g), {g, -1});
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            note(TagOf(*book.GetPunAt(g, p)), *book.GetPunAt(g, p), {g, p});
    }

    for (auto item = model_.pending.begin(); item != model_.pending.end();) {
        const auto place = places.find(item->first);
        CheckPending(item->first, item->second, place == places.end() ? Place{} : place->second);
        item = item->second.empty() ? model_.pending.erase(item) : std::next(item);
    }
}

// A position that was computed in a sync, in place of one that waited or came.
bool SurveyDevice::IsOfFix(Place place) {
    CPunGps& point = *GetBook().GetPunAt(place.g, place.p);
    CPunGps computed(point);
    computed.SetCloudNotify(false);
    GetBook().CalcolaCoordCart(&computed, place.g);
    return TextOf(computed, CHG_COORD) == TextOf(point, CHG_COORD);
}

void SurveyDevice::CheckPending(Tag tag, std::map<std::uint32_t, UserModel::Waiting>& values, Place place) {
    CLibGps& book = GetBook();
    const std::int64_t id = survey_.IdOf(tag);
    const CCloudItem* here = nullptr;
    if (place.g >= 0) here = CGrpGps::CloudItemOf(book.GetGrpAt(place.g));
    if (place.p >= 0) here = CPunGps::CloudItemOf(book.GetPunAt(place.g, place.p));
    if (const auto position = values.find(CHG_COORD);
        position != values.end() && here && place.p >= 0 && IsOfFix(place)) {
        const std::string now = TextOf(*book.GetPunAt(place.g, place.p), CHG_COORD);
        const bool isMarked = here->GetCloudId() < 1 || (here->GetCloudFlag() & CHG_COORD) != 0;
        if (isMarked) position->second.text = now;
    }
    std::erase_if(values, [&](const auto& waiting) {
        const std::uint32_t bit = waiting.first;
        const std::string& value = waiting.second.text;
        const bool isMarked = here && (here->GetCloudId() < 1 || (here->GetCloudFlag() & bit) != 0);
        if (isMarked) {
            const std::string now = place.p < 0
                                        ? OwnText(CloudKind::group, bit, TextOf(*book.GetGrpAt(place.g), bit))
                                        : TextOf(*book.GetPunAt(place.g, place.p), bit);
            EXPECT_EQ(now, value) << Where() << ": item " << tag << ", bit " << bit;
            return false;
        }
        if (id > 0 && survey_.WasTaken(id, bit, value)) return true;
        // Also when the item is there again: an old page has brought it, and the next pull takes it away.
        EXPECT_TRUE(IsKept(tag, bit, value)) << Where() << ": '" << value << "' (item " << tag << ", bit "
                                             << bit << ") is not to be sent, was not taken, and is not kept";
        return false;
    });
}

const std::vector<KeptFields>& SurveyDevice::KeptIn(const CloudConflict& conflict) {
    const auto [found, isNew] = kept_.try_emplace(conflict.record);
    if (isNew) found->second = FieldsOfKept(conflict);
    return found->second;
}

bool SurveyDevice::IsKept(Tag tag, std::uint32_t bit, const std::string& value) {
    for (const CloudConflict& conflict : project_->GetCloud().GetState().conflicts) {
        if (conflict.kind != CloudConflict::Kind::kept) continue;
        for (const KeptFields& item : KeptIn(conflict))
            if (item.tag == tag && item.Has(bit, value)) return true;
    }
    return false;
}

// What the answer says that others had set stands in the list of conflicts.
void SurveyDevice::CheckToldOfClashes() {
    const auto& conflicts = project_->GetCloud().GetState().conflicts;
    for (const auto& clash : line_.GetLastAnswer().clashes) {
        const bool told = std::any_of(conflicts.begin(), conflicts.end(),
                                      [&](const CloudConflict& one) { return one.clash == clash; });
        EXPECT_TRUE(told) << Where() << ": nobody is told that '" << clash.theirs << "' was replaced";
    }
}

// Everything that a book holds, and what it is about to send.
std::string SurveyDevice::WholeState() {
    ofpstream out(gpsproject::Project::kNewestVersion);
    gpsproject::BookCloud& cloud = project_->GetCloud();
    gpsproject::WriteCloudState(out, cloud.GetState());
    const auto table = [&](const CCloudTable& one) {
        one.SalvaCommit(out);
        for (const CCloudItem* item : one.GetAdded()) out.WriteInt64(item->GetTicket());
        for (const long long id : one.GetDeleted()) out.WriteInt64(id);
    };
    table(cloud.GetTables().base);
    table(cloud.GetTables().points);
    project_->GetMap().SalvaInFile(out, out.GetVersion());
    std::string whole(out.GetBytes());
    const auto add = [&](const CCloudItem& item) {
        ofpstream record(gpsproject::Project::kNewestVersion);
        item.SalvaInFile(record, record.GetVersion(), false);
        // Not the ticket, which stands last: that of an item with an id means nothing any more.
        whole += record.GetBytes().substr(0, 16);
    };
    CLibGps& book = GetBook();
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        add(*book.GetGrpAt(g));
        for (int p = 0; p < book.GetPunArSize(g); ++p) add(*book.GetPunAt(g, p));
        whole += gpsproject::KeepGroup(book, g);
    }
    return whole;
}

void SurveyDevice::CheckSameAs(const std::map<Tag, SharedSurvey::Item>& everything, bool map) {
    CLibGps& book = GetBook();
    std::size_t items = 0;
    const auto compare = [&](CloudKind kind, Tag tag, std::int64_t id, std::int64_t group,
                             const std::string& text) {
        ++items;
        const auto found = everything.find(tag);
        if (found == everything.end()) {
            ADD_FAILURE() << Where() << ": item " << tag << " is not on the server";
            return;
        }
        EXPECT_EQ(found->second.id, id) << Where() << ": item " << tag;
        EXPECT_EQ(found->second.group, group) << Where() << ": item " << tag;
        EXPECT_EQ(Difference(kind, text, found->second.text, map), "") << Where() << ": item " << tag;
    };
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        CGrpGps& group = *book.GetGrpAt(g);
        compare(CloudKind::group, TagOf(group), group.GetCloudId(), 0, TextOf(group, kGroupBits));
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            CPunGps& point = *book.GetPunAt(g, p);
            compare(CloudKind::point, TagOf(point), point.GetCloudId(), group.GetCloudId(),
                    TextOf(point, kPointBits));
        }
    }
    EXPECT_EQ(items, everything.size()) << Where() << ": items are missing";
}

namespace {

void CheckItems(SharedSurvey& survey, const SurveyDevices& devices,
                const std::map<Tag, SharedSurvey::Item>& everything) {
    std::set<Tag> deleted;
    for (const auto& device : devices)
        deleted.insert(device->GetModel().deleted.begin(), device->GetModel().deleted.end());
    std::size_t there = 0;
    for (const auto& device : devices) {
        const UserModel& model = device->GetModel();
        for (const auto& [tag, group] : model.created) {
            const bool gone = deleted.contains(tag) || (group != 0 && deleted.contains(group));
            if (everything.contains(tag)) {
                ++there;
                EXPECT_FALSE(gone) << "item " << tag << " was deleted and is there";
                continue;
            }
            EXPECT_TRUE(gone) << "item " << tag << " of " << device->GetName() << " was lost";
            if (model.deleted.contains(tag) || model.settled.contains(tag) || survey.IdOf(tag) > 0) continue;
            EXPECT_TRUE(device->KeptTags().contains(tag))
                << "item " << tag << " of " << device->GetName() << " was never sent, and is not kept";
        }
    }
    EXPECT_EQ(there, everything.size()) << "there are items that nobody made";
}

}  // namespace

void CheckTogether(SharedSurvey& survey, const SurveyDevices& devices) {
    const auto everything = survey.Everything();
    // The map library travels with groups alone: what was changed in it with a group that was deleted before
    // it was sent stays in that book.
    const auto wasTaken = [&](const std::pair<Tag, std::string>& change) {
        const std::int64_t id = survey.IdOf(change.first);
        return id > 0 && survey.WasTaken(id, CHG_GRP_CONVCOORD, change.second);
    };
    for (const auto& device : devices) {
        EXPECT_FALSE(device->HasToSend()) << device->GetName() << " has something to send for ever";
        const auto& changes = device->GetModel().mapChanges;
        const bool map = std::all_of(changes.begin(), changes.end(), wasTaken);
        device->CheckSameAs(everything, map);
    }
    for (const std::string& value : survey.MissingValues())
        ADD_FAILURE() << value << " was taken, and is neither in the project nor in its history";
    CheckItems(survey, devices, everything);
}

}  // namespace test
