#include "platform/entity/CCloudProject.h"

#include "platform/entity/CCloudTable.h"

void CCloudProject::GenerateCommit(vex::String& records) {
    records.Empty();
    if (!base_ || !points_) return;
    vex::String part;
    const auto add = [&] {
        if (part.IsEmpty()) return;
        if (!records.IsEmpty()) records += "\r\n";
        records += part.View();
    };
    int counter = 0;
    base_->GenerateCommitString_Change(part);
    add();
    points_->GenerateCommitString_Change(part);
    add();
    base_->GenerateCommitString_Add(counter, part);
    add();
    points_->GenerateCommitString_Add(counter, part);
    add();
    base_->GenerateCommitString_Del(part);
    add();
    points_->GenerateCommitString_Del(part);
    add();
}
