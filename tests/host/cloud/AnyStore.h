// AnyStore: tests that hold for every store.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/cloud/MemoryStore.h"
#include "host/cloud/SqliteStore.h"
#include "host/cloud/SyncServer.h"
#include "tests/TempFolder.h"

namespace test {

/// Makes stores of each kind. A second one of a file store sees the same projects.
class StoreMaker {
public:
    enum class Kind { memory, sqlite };

    explicit StoreMaker(Kind kind) : kind_(kind) {}
    std::unique_ptr<gpssync::SyncStore> Make() const {
        if (kind_ == Kind::memory) return std::make_unique<gpssync::MemoryStore>();
        return std::make_unique<gpssync::SqliteStore>(Path());
    }

    std::string Path() const { return folder_ / "shared.sqlite"; }

private:
    Kind kind_;
    TempFolder folder_;
};

class AnyStore : public ::testing::TestWithParam<StoreMaker::Kind> {
protected:
    StoreMaker maker_{GetParam()};
};

inline std::string StoreName(const ::testing::TestParamInfo<StoreMaker::Kind>& info) {
    return info.param == StoreMaker::Kind::memory ? "Memory" : "Sqlite";
}

inline auto EveryStore() { return ::testing::Values(StoreMaker::Kind::memory, StoreMaker::Kind::sqlite); }

}  // namespace test
