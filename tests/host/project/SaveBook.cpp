// SaveBook: opens a book, changes it and saves it; for tests that let the system refuse something meanwhile.
#include <cstdlib>
#include <iostream>

#include "host/project/Project.h"
#include "tests/host/project/Samples.h"

int main(int count, char** arguments) {
    if (count != 3) return 2;
    try {
        const auto project = gpsproject::Project::Open(arguments[1], gpsproject::Project::Mode::write);
        if (project->GetReport().IsDamaged()) {
            std::cerr << arguments[1] << ": " << project->GetReport().Text();
            return 3;
        }
        test::Fill(*project, static_cast<int>(std::strtol(arguments[2], nullptr, 10)));
        project->Save();
    } catch (const gpsproject::ProjectError& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
    return 0;
}
