// A project file: opened for reading, whatever it holds, from memory.
#include <memory>

#include "fuzz/Fuzz.h"
#include "fuzz/OneFile.h"
#include "host/project/Project.h"

namespace {

constexpr const char* kPath = "/book.gpsbook";

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    fuzz::OneFile files(kPath, {reinterpret_cast<const char*>(data), size});
    try {
        const auto project = gpsproject::Project::Open(kPath, gpsproject::Project::Mode::read, files);
        fuzz::Require(project->IsReadOnly(), "what is opened for reading is not written");
        fuzz::Require(project->GetReport().IsDamaged() == !project->GetReport().Text().empty(),
                      "a report says something when there is damage, and only then");
    } catch (const gpsproject::ProjectError& error) {
        fuzz::Require(error.what()[0] != '\0', "an error says what is wrong");
    }
    return 0;
}
