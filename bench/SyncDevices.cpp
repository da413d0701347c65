// Two books on one project: what was measured with one comes into the other, through a store, journals and
// all, against bare inserts and selects.
#include <filesystem>
#include <limits>
#include <memory>
#include <stdexcept>

#include "bench/Store.h"
#include "bench/SyncStore.h"
#include "bench/Workload.h"
#include "host/cloud/SqliteStore.h"
#include "host/cloud/Sync.h"

namespace bench {

namespace {

namespace fs = std::filesystem;
using gpsproject::Project;

/// One of the two: its book, which has a file, and its connection to the store.
struct Device {
    std::unique_ptr<Project> project;
    std::unique_ptr<gpssync::Transport> transport;
    gpssync::Sender sender;

    void Sync() { gpssync::Sync(*project, *transport, sender); }
};

struct Devices {
    std::string store = ScratchFile("shared");
    Device first, second;

    ~Devices() { Clear(); }

    void Clear() {
        for (Device* device : {&first, &second}) {
            if (device->project) device->project->DropEdits();
            *device = {};
        }
        fs::remove(store);
    }

    void Make(Device& device, int number, std::size_t points) {
        device.sender = {number, "device " + std::to_string(number)};
        device.project = std::make_unique<Project>(kVersion);
        CLibGps& book = device.project->GetBook();
        if (points > 0) book.AddGrp(false);
        for (std::size_t i = 0; i < points; ++i) Fill(*book.AddPun(0, false), MakeFix(i));
        device.transport = gpssync::OpenStore(store);
        gpssync::LinkBook(*device.project, *device.transport, store, "site", true);
        device.project->SaveAs(ScratchFile("book" + std::to_string(number)), true);
    }
};

Work TwoBooks() {
    return {"sync.devices", [](std::size_t n) -> Run {
                auto devices = std::make_shared<Devices>();
                return Run{[devices, n] {
                               devices->first.Sync();
                               devices->second.Sync();
                               const auto pulled = devices->second.project->GetBook().GetPunArSize(0);
                               if (pulled != static_cast<int>(n))
                                   throw std::runtime_error("bench: the second book has other points");
                           },
                           [devices, n] {
                               devices->Clear();
                               devices->Make(devices->first, 1, n);
                               devices->Make(devices->second, 2, 0);
                           }};
            }};
}

}  // namespace

std::vector<Ratio> SyncDeviceRatios() {
    const auto ratio = [](const char* name, const Work& peer, double bound) {
        return Ratio{name, TwoBooks(), peer, {100'000}, [bound](std::size_t) { return bound; }, 0, 0, true};
    };
    return {ratio("sync.devices/bare", BareStoreWork(), 3.0),
            ratio("sync.devices/plain_table", BareTableWork(), std::numeric_limits<double>::infinity())};
}

}  // namespace bench
