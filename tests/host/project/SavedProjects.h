// SavedProjects: sample projects on disk, and what one holds.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/project/Project.h"
#include "tests/host/project/Samples.h"

namespace test {

inline void Make(const std::string& path, int number, short version = gpsproject::Project::kNewestVersion) {
    gpsproject::Project project(version);
    Fill(project, number);
    project.SaveAs(path, false);
}

inline Content ContentIn(const std::string& path) {
    const auto project = gpsproject::Project::Open(path, gpsproject::Project::Mode::read);
    EXPECT_FALSE(project->GetReport().IsDamaged()) << project->GetReport().Text();
    return ContentOf(*project);
}

inline Content Contents(int number) {
    gpsproject::Project project;
    Fill(project, number);
    return ContentOf(project);
}

}  // namespace test
