// The records that every point and group holds: entity and cloud item, in a table with other items.
#include <memory>

#include "fuzz/Fuzz.h"
#include "platform/entity/CCloudItem.h"
#include "platform/entity/CCloudTable.h"
#include "platform/entity/CEgn.h"

namespace {

struct Table final : CCloudTable {
    Table() : CCloudTable(tabGpsPnt) {}
};

struct Item final : CCloudItem {
    using CCloudItem::CCloudItem;
};

// An entity and an item, in a table that has another item before and one after it.
struct Both {
    explicit Both(bool withTable) : table(withTable ? std::make_unique<Table>() : nullptr) {
        if (table) {
            before = std::make_unique<Item>(table.get(), false);
            before->SetCloudId(2);
            table->AddItemToTable(before.get());
        }
        item = std::make_unique<Item>(table.get(), false);
        if (table) after = std::make_unique<Item>(table.get(), false);
    }
    CEgn egn;
    std::unique_ptr<Table> table;
    std::unique_ptr<Item> before, item, after;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Input input(data, size);
    const auto read = [](Both& both, ifpstream& in) {
        both.egn.LeggeDaFile(in);
        both.item->LeggeDaFile(in, in.GetVersion());
        if (!both.table) return;
        both.after->CloudItemChanged(1);
        fuzz::Require(both.table->GetAdded().size() + both.table->GetById().size() == 3,
                      "every item is there once");
        long long ticket = 0;
        for (const CCloudItem* item : both.table->GetAdded()) {
            fuzz::Require(item->GetTicket() > ticket, "added items stand in order of their tickets");
            ticket = item->GetTicket();
        }
    };
    const auto write = [&](Both& both, ofpstream& out) {
        both.egn.SalvaInFile(out);
        both.item->SalvaInFile(out, out.GetVersion(), false);
    };
    fuzz::RequireSameAgain(
        input, [&] { return std::make_unique<Both>(input.Switch(0)); }, read, write);
    return 0;
}
