// What every store does, without the server's rules.
#include "tests/host/cloud/AnyStore.h"

#include <limits>

#include "host/cloud/ProjectMap.h"

namespace {

using gpssync::CloudKind;
using gpssync::Deletion;
using gpssync::HistoryEntry;
using gpssync::MapPart;
using gpssync::Mark;
using gpssync::PullWindow;
using gpssync::Setter;
using gpssync::StoredCommit;
using gpssync::StoredItem;
using gpssync::StoredProject;
using gpssync::StoreTransaction;
using gpssync::SyncStore;
using gpssync::Unset;
using gpssync::Value;
using gpssync::Values;

class Store : public test::AnyStore {
protected:
    Store() {
        StoreTransaction transaction(*store_, SyncStore::Access::make);
        project_ = store_->AddProject(std::string(32, 'a'), "site").number;
        transaction.Commit();
    }

    // Does something in a transaction of its own.
    template <class Do>
    void Write(Do what) {
        StoreTransaction transaction(*store_, SyncStore::Access::write);
        what();
        transaction.Commit();
    }

    StoredItem Find(CloudKind kind, std::int64_t id) {
        StoreTransaction transaction(*store_, SyncStore::Access::read);
        StoredItem item;
        EXPECT_TRUE(store_->FindItem(project_, kind, id, item));
        return item;
    }

    std::unique_ptr<SyncStore> store_ = maker_.Make();
    std::int64_t project_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Stores, Store, test::EveryStore(), test::StoreName);

// Every field has a value of its own; those of the map library, which belong to no item, are not set.
StoredItem SomeItem(CloudKind kind, std::int64_t id, Mark mark) {
    StoredItem item;
    item.kind = kind;
    item.id = id;
    item.group = kind == CloudKind::point ? 1 : 0;
    item.created = item.changed = mark;
    const auto fields = gpssync::FieldsOf(kind);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto number = static_cast<std::int64_t>(i);
        if (gpssync::IsOfMap(kind, i))
            item.values.emplace_back();
        else if (fields[i].type == gpssync::FieldType::text)
            item.values.emplace_back("text " + std::to_string(i));
        else if (fields[i].type == gpssync::FieldType::real)
            item.values.emplace_back(0.1 * static_cast<double>(i));
        else
            item.values.emplace_back(std::min(fields[i].most, number));
    }
    return item;
}

StoredCommit SomeCommit(char id, std::int64_t revision, std::int64_t lastId) {
    return {std::string(32, id),       7,      revision, lastId, "digest", "answer \xC3\xA8",
            std::string("head ") + id, "Anna", 1,        {2, 5}};
}

TEST_P(Store, ProjectIsFoundByNameAndByKeyAsItWasAdvanced) {
    Write([&] { store_->AdvanceProject({project_, "", "", 5, 9'000'000'000'000}); });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    for (const auto& found :
         {store_->FindProjectByName("site"), store_->FindProjectByKey(std::string(32, 'a'))}) {
        ASSERT_TRUE(found);
        EXPECT_EQ(found->number, project_);
        EXPECT_EQ(found->key, std::string(32, 'a'));
        EXPECT_EQ(found->name, "site");
        EXPECT_EQ(found->revision, 5);
        EXPECT_EQ(found->lastId, 9'000'000'000'000);
    }
    EXPECT_FALSE(store_->FindProjectByName("Site"));
    EXPECT_FALSE(store_->FindProjectByKey(""));
}

TEST_P(Store, ItemsComeBackWithEveryField) {
    for (const CloudKind kind : {CloudKind::group, CloudKind::point}) {
        const StoredItem item = SomeItem(kind, 8, {3, 4});
        Write([&] { store_->AddItem(project_, item); });
        EXPECT_EQ(Find(kind, 8), item);
    }
}

TEST_P(Store, ExtremeValuesComeBack) {
    StoredItem item = SomeItem(CloudKind::point, 9'223'372'036'854'775'807, {1, 2147483647});
    item.values[0] = "";
    item.values[1] = "\xC3\xA8 \xE6\xB8\xAC ' \" \\ " + std::string(100'000, 'x');
    item.values[2] = Unset();
    item.values[3] = -std::numeric_limits<double>::infinity();
    item.values[4] = 5e-324;
    item.values[5] = std::int64_t{-2147483648};
    item.values[13] = 0.0;
    item.values[14] = -1.7976931348623157e308;
    item.values[15] = 9007199254740993.0;
    item.values[16] = 1e22;
    Write([&] { store_->AddItem(project_, item); });
    EXPECT_EQ(Find(CloudKind::point, item.id), item);
}

TEST_P(Store, ChangeKeepsValuesAndWhoMadeTheItem) {
    StoredItem item = SomeItem(CloudKind::group, 8, {3, 4});
    Write([&] { store_->AddItem(project_, item); });
    for (std::size_t i = 0; i < item.values.size(); ++i)
        if (std::holds_alternative<double>(item.values[i])) item.values[i] = Unset();
    item.values[0] = "other";
    item.changed = {5, 6};
    StoredItem change = item;
    change.created = {9, 9};  // not a part of a change
    Write([&] { store_->ChangeItem(project_, change); });
    EXPECT_EQ(Find(CloudKind::group, 8), item);
}

TEST_P(Store, DeletedItemStaysAsItWas) {
    StoredItem item = SomeItem(CloudKind::point, 8, {3, 4});
    Write([&] { store_->AddItem(project_, item); });
    Write([&] { store_->DeleteItem(project_, CloudKind::point, 8, {5, 6}); });
    item.deleted = {5, 6};
    EXPECT_EQ(Find(CloudKind::point, 8), item);
}

TEST_P(Store, GroupsPointsAndProjectsHaveItemsOfTheirOwn) {
    std::int64_t other = 0;
    Write([&] {
        other = store_->AddProject(std::string(32, 'b'), "tunnel").number;
        store_->AddItem(project_, SomeItem(CloudKind::group, 8, {3, 4}));
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    StoredItem item;
    EXPECT_FALSE(store_->FindItem(project_, CloudKind::point, 8, item));
    EXPECT_FALSE(store_->FindItem(other, CloudKind::group, 8, item));
}

TEST_P(Store, PointsOfAGroupAreDeletedButThoseThatAreDeletedAlready) {
    Write([&] {
        for (const std::int64_t id : {2, 3, 4}) {
            StoredItem point = SomeItem(CloudKind::point, id, {1, 1});
            point.group = id == 4 ? 9 : 1;
            store_->AddItem(project_, point);
        }
        store_->DeleteItem(project_, CloudKind::point, 2, {2, 2});
        store_->DeletePointsOf(project_, 1, {3, 3});
    });
    EXPECT_EQ(Find(CloudKind::point, 2).deleted, (Mark{2, 2}));
    EXPECT_EQ(Find(CloudKind::point, 3).deleted, (Mark{3, 3}));
    EXPECT_EQ(Find(CloudKind::point, 4).deleted, Mark());
}

TEST_P(Store, ChangedPointsOfAGroupAreThoseThatAreNewerAndThere) {
    Write([&] {
        for (const std::int64_t id : {2, 3, 4, 5, 6}) {
            StoredItem point = SomeItem(CloudKind::point, id, {id, 1});
            point.group = id == 5 ? 9 : 1;
            store_->AddItem(project_, point);
        }
        store_->DeleteItem(project_, CloudKind::point, 4, {7, 1});
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    std::vector<std::int64_t> ids;
    store_->ChangedPointsOf(project_, 1, 2, [&](const StoredItem& point) { ids.push_back(point.id); });
    EXPECT_EQ(ids, (std::vector<std::int64_t>{3, 6}));
}

TEST_P(Store, SetterOfABitIsTheLast) {
    Write([&] {
        store_->AddItem(project_, SomeItem(CloudKind::point, 8, {1, 1}));
        store_->SetSetter(project_, CloudKind::point, 8, {0x10000, {2, 5}});
        store_->SetSetter(project_, CloudKind::point, 8, {1, {2, 5}});
        store_->SetSetter(project_, CloudKind::point, 8, {0x10000, {3, 6}});
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    EXPECT_EQ(store_->SettersOf(project_, CloudKind::point, 8),
              (std::vector<Setter>{{1, {2, 5}}, {0x10000, {3, 6}}}));
}

TEST_P(Store, HistoryIsOfOneItemOldestFirst) {
    const HistoryEntry first{CloudKind::point, 8, 1, "a;b", {1, 2}, {3, 4}};
    const HistoryEntry second{CloudKind::point, 8, 4, "", {3, 4}, {5, 6}};
    Write([&] {
        store_->AddHistory(project_, first);
        store_->AddHistory(project_, {CloudKind::group, 8, 1, "x", {1, 1}, {2, 2}});
        store_->AddHistory(project_, second);
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    EXPECT_EQ(store_->HistoryOf(project_, CloudKind::point, 8), (std::vector<HistoryEntry>{first, second}));
    EXPECT_TRUE(store_->HistoryOf(project_, CloudKind::point, 9).empty());
}

TEST_P(Store, CommitComesBack) {
    Write([&] {
        store_->AddCommit(project_, SomeCommit('c', 4, 12));
        StoredCommit next = SomeCommit('e', 5, 12);
        next.author = "Bruno";
        next.own = {};
        store_->AddCommit(project_, next);
        next = SomeCommit('f', 0, 12);
        store_->AddCommit(project_, next);
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    const auto commit = store_->FindCommit(project_, std::string(32, 'c'));
    ASSERT_TRUE(commit);
    EXPECT_EQ(commit->device, 7);
    EXPECT_EQ(commit->revision, 4);
    EXPECT_EQ(commit->lastId, 12);
    EXPECT_EQ(commit->digest, "digest");
    EXPECT_EQ(commit->answer, "answer \xC3\xA8");
    EXPECT_EQ(commit->head, "head c");
    EXPECT_FALSE(store_->FindCommit(project_, std::string(32, 'd')));
    EXPECT_EQ(commit->author, "Anna");
    EXPECT_EQ(commit->base, 1);
    EXPECT_EQ(commit->own, (std::vector<std::int64_t>{2, 5}));
    EXPECT_EQ(store_->AuthorOf(project_, 4), "Anna");
    EXPECT_EQ(store_->AuthorOf(project_, 5), "Bruno");
    EXPECT_EQ(store_->AuthorOf(project_, 6), "");
    EXPECT_EQ(store_->AuthorOf(project_, 0), "") << "it became no revision";
    EXPECT_TRUE(store_->FindCommit(project_, std::string(32, 'e'))->own.empty());
}

TEST_P(Store, HeadIsFoundByItsRevision) {
    Write([&] {
        store_->AddCommit(project_, SomeCommit('c', 0, 0));
        store_->AddCommit(project_, SomeCommit('d', 1, 4));
        store_->AddCommit(project_, SomeCommit('a', 2, 4));
        store_->AddCommit(store_->AddProject(std::string(32, 'b'), "tunnel").number, SomeCommit('e', 3, 4));
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    EXPECT_EQ(store_->HeadOf(project_, 0), "");
    EXPECT_EQ(store_->HeadOf(project_, 1), "head d");
    EXPECT_EQ(store_->HeadOf(project_, 2), "head a");
    EXPECT_EQ(store_->HeadOf(project_, 3), "");
}

TEST_P(Store, GroupsAtAPlaceAreThoseThatSelectItAndAreThere) {
    Write([&] {
        const gpssync::MapPlace places[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}, {0, 0, 0}};
        std::int64_t id = 0;
        for (const auto& [one, two, index] : places) {
            StoredItem group = SomeItem(CloudKind::group, ++id, {1, 1});
            group.values[gpssync::kMapSelector] = one;
            group.values[gpssync::kMapSelector + 1] = two;
            group.values[gpssync::kMapSelector + 2] = index;
            store_->AddItem(project_, group);
        }
        store_->DeleteItem(project_, CloudKind::group, 5, {2, 2});
        StoredItem other = SomeItem(CloudKind::group, 7, {1, 1});
        for (std::size_t i = 0; i < 3; ++i) other.values[gpssync::kMapSelector + i] = std::int64_t{0};
        store_->AddItem(store_->AddProject(std::string(32, 'b'), "tunnel").number, other);
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    using Ids = std::vector<std::int64_t>;
    EXPECT_EQ(store_->GroupsAt(project_, gpssync::MapPlace{0, 0, 0}), (Ids{1, 6}));
    EXPECT_EQ(store_->GroupsAt(project_, gpssync::MapPlace{0, 1, 0}), (Ids{3}));
    EXPECT_EQ(store_->GroupsAt(project_, gpssync::MapPlace{2, 0, 0}), Ids{});
    EXPECT_EQ(store_->GroupsAt(project_, std::nullopt), (Ids{1, 2, 3, 4, 6}));
}

TEST_P(Store, MapLibraryIsKeptByPlace) {
    const auto part = [](const StoredItem& group, std::size_t first, std::size_t count) {
        MapPart kept{{2, 3}, {}};
        for (std::size_t i = first; i < first + count; ++i) {
            const gpssync::Field& field = gpssync::kGroupFields[i];
            if (field.type == gpssync::FieldType::text)
                kept.values.emplace_back("datum " + std::to_string(group.id));
            else if (field.type == gpssync::FieldType::real)
                kept.values.emplace_back(0.5 * static_cast<double>(i));
            else
                kept.values.emplace_back(std::int64_t{1});
        }
        kept.values.back() = Unset();
        return kept;
    };
    StoredItem group;
    const MapPart first = part(group, gpssync::kSelectedDatum, gpssync::kDatumFields);
    group.id = 1;
    const MapPart second = part(group, gpssync::kSelectedDatum, gpssync::kDatumFields);
    const MapPart library = part(group, gpssync::kMapLibrary, gpssync::kLibraryFields);
    Write([&] {
        store_->SetMapDatum(project_, {-1, 0, 2147483647}, second);
        store_->SetMapDatum(project_, {-1, 0, 2147483647}, first);
        store_->SetMapDatum(project_, {0, 0, 0}, second);
        store_->SetMapLibrary(project_, library);
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    EXPECT_EQ(store_->MapDatum(project_, {-1, 0, 2147483647}), first);
    EXPECT_EQ(store_->MapDatum(project_, {0, 0, 0}), second);
    EXPECT_FALSE(store_->MapDatum(project_, {0, 0, 1}));
    EXPECT_EQ(store_->MapLibrary(project_), library);
}

TEST_P(Store, TransactionThatIsLeftWasNeverThere) {
    Write([&] {
        store_->AddItem(project_, SomeItem(CloudKind::group, 1, {1, 1}));
        store_->AddItem(project_, SomeItem(CloudKind::point, 2, {1, 1}));
        store_->SetSetter(project_, CloudKind::point, 2, {1, {1, 1}});
        store_->SetMapLibrary(project_, {{1, 1}, gpssync::ProjectMap(*store_, project_).Library().values});
    });
    const StoredItem before = Find(CloudKind::point, 2);
    {
        StoreTransaction transaction(*store_, SyncStore::Access::write);
        StoredItem item = before;
        item.values[0] = "other";
        item.changed = {2, 2};
        store_->ChangeItem(project_, item);
        store_->ChangeItem(project_, item);
        store_->SetSetter(project_, CloudKind::point, 2, {1, {2, 2}});
        store_->SetSetter(project_, CloudKind::point, 2, {2, {2, 2}});
        store_->DeletePointsOf(project_, 1, {2, 2});
        store_->DeleteItem(project_, CloudKind::group, 1, {2, 2});
        store_->AddItem(project_, SomeItem(CloudKind::point, 3, {2, 2}));
        store_->AddHistory(project_, {CloudKind::point, 2, 1, "x", {1, 1}, {2, 2}});
        store_->AddCommit(project_, SomeCommit('c', 2, 3));
        store_->SetMapDatum(project_, {0, 0, 0},
                            {{2, 2}, gpssync::ProjectMap(*store_, project_).Datum({0, 0, 0}).values});
        MapPart library = *store_->MapLibrary(project_);
        library.set = {2, 2};
        store_->SetMapLibrary(project_, library);
        store_->AdvanceProject({project_, "", "", 2, 3});
        store_->AddProject(std::string(32, 'b'), "tunnel");
    }
    EXPECT_EQ(Find(CloudKind::point, 2), before);
    EXPECT_EQ(Find(CloudKind::group, 1).deleted, Mark());
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    StoredItem item;
    EXPECT_FALSE(store_->FindItem(project_, CloudKind::point, 3, item));
    EXPECT_EQ(store_->SettersOf(project_, CloudKind::point, 2), (std::vector<Setter>{{1, {1, 1}}}));
    EXPECT_TRUE(store_->HistoryOf(project_, CloudKind::point, 2).empty());
    EXPECT_FALSE(store_->FindCommit(project_, std::string(32, 'c')));
    EXPECT_EQ(store_->AuthorOf(project_, 2), "");
    EXPECT_FALSE(store_->MapDatum(project_, {0, 0, 0}));
    EXPECT_EQ(store_->MapLibrary(project_)->set, (Mark{1, 1}));
    EXPECT_EQ(store_->FindProjectByName("site")->revision, 0);
    EXPECT_FALSE(store_->FindProjectByName("tunnel"));
}

// Few changes and many are found in two ways in a file; both give the same.
TEST_P(Store, NewerItemsAreGivenInOrderOfIdsUpToTheLimit) {
    Write([&] {
        for (std::int64_t id = 1; id <= 20; ++id)
            store_->AddItem(project_, SomeItem(CloudKind::point, id, {id <= 10 ? 1 : 2, 1}));
        store_->AddCommit(project_, SomeCommit('1', 1, 10));
        store_->AddCommit(project_, SomeCommit('2', 2, 20));
        store_->AddCommit(project_, SomeCommit('3', 3, 20));
        for (const std::int64_t id : {9, 3, 15}) {
            StoredItem item = SomeItem(CloudKind::point, id, {});
            item.changed = {3, 2};
            store_->ChangeItem(project_, item);
            store_->SetSetter(project_, CloudKind::point, id, {1, {3, 2}});
        }
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    const auto ids = [&](const PullWindow& window, std::int64_t after, std::size_t limit) {
        std::vector<std::int64_t> given;
        const std::size_t count = store_->Newer(project_, CloudKind::point, window, after, limit,
                                                [&](StoredItem& item) { given.push_back(item.id); });
        EXPECT_EQ(count, given.size());
        return given;
    };
    using Ids = std::vector<std::int64_t>;
    EXPECT_EQ(ids({2, {}, 3}, 0, 100), (Ids{3, 9, 15}));
    EXPECT_EQ(ids({2, {}, 3}, 0, 2), (Ids{3, 9}));
    EXPECT_EQ(ids({2, {}, 3}, 3, 1), (Ids{9}));
    EXPECT_EQ(ids({2, {}, 3}, 9, 1), (Ids{15}));
    EXPECT_EQ(ids({1, {}, 3}, 0, 4), (Ids{3, 9, 11, 12}));
    EXPECT_EQ(ids({1, {}, 3}, 3, 2), (Ids{9, 11}));
    EXPECT_EQ(ids({1, {3}, 3}, 0, 100), (Ids{11, 12, 13, 14, 15, 16, 17, 18, 19, 20}));
    EXPECT_EQ(ids({1, {2}, 3}, 0, 100), (Ids{3, 9, 15}));
    EXPECT_EQ(ids({1, {2, 3}, 3}, 0, 100), Ids{});
    EXPECT_EQ(ids({0, {}, 1}, 7, 100), (Ids{8, 9, 10}));
    EXPECT_EQ(ids({0, {}, 3}, 18, 100), (Ids{19, 20}));
    EXPECT_EQ(ids({3, {}, 3}, 0, 100), Ids{});
}

TEST_P(Store, GroupAsItWasMadeIsNewerByASetter) {
    Write([&] {
        store_->AddItem(project_, SomeItem(CloudKind::group, 1, {3, 1}));
        store_->AddItem(project_, SomeItem(CloudKind::group, 2, {3, 1}));
        store_->AddCommit(project_, SomeCommit('3', 3, 2));
        store_->SetSetter(project_, CloudKind::group, 2, {gpssync::kLibraryBit, {2, 5}});
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    std::vector<std::int64_t> ids;
    store_->Newer(project_, CloudKind::group, {1, {3}, 3}, 0, 10,
                  [&](StoredItem& item) { ids.push_back(item.id); });
    EXPECT_EQ(ids, (std::vector<std::int64_t>{2}));
    EXPECT_EQ(store_->SettersOf(project_, CloudKind::group, 2),
              (std::vector<Setter>{{gpssync::kLibraryBit, {2, 5}}}));
}

TEST_P(Store, DeletionsAreGivenInOrderOfRevisions) {
    Write([&] {
        for (std::int64_t id = 1; id <= 5; ++id)
            store_->AddItem(project_, SomeItem(CloudKind::group, id, {1, 1}));
        for (const auto& [id, revision] : {std::pair{1, 4}, {2, 3}, {4, 3}, {5, 2}})
            store_->DeleteItem(project_, CloudKind::group, id, {revision, 9});
    });
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    const auto deletions = [&](const PullWindow& window, const Deletion& after, std::size_t limit) {
        return store_->NewerDeletions(project_, CloudKind::group, window, after, limit);
    };
    const Deletion one{1, {4, 9}}, two{2, {3, 9}}, four{4, {3, 9}}, five{5, {2, 9}};
    using Deletions = std::vector<Deletion>;
    EXPECT_EQ(deletions({1, {}, 4}, {}, 100), (Deletions{five, two, four, one}));
    EXPECT_EQ(deletions({1, {}, 4}, {}, 2), (Deletions{five, two}));
    EXPECT_EQ(deletions({1, {}, 4}, two, 100), (Deletions{four, one}));
    EXPECT_EQ(deletions({2, {}, 3}, {}, 100), (Deletions{two, four}));
    EXPECT_EQ(deletions({1, {3}, 4}, {}, 100), (Deletions{five, one}));
}

}  // namespace
