// Samples: projects with something in every part, and how they are compared.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/project/Project.h"

namespace test {

/// Groups with points, datums, options of post-processing and texts. Another number gives another book of the
/// same kind.
void Fill(gpsproject::Project& project, int number, int groups = 2, int points = 3);

/// Everything a project holds, as bytes; what no version but the newest holds, too. Empty: nothing is known.
struct Content : std::string {
    friend void PrintTo(const Content& content, std::ostream* out) { *out << content.size() << " bytes"; }
};

Content ContentOf(gpsproject::Project& project);

/// What is thrown: its kind, and its message through `message`.
template <class Call>
gpsproject::ProjectError::Kind KindOf(Call call, std::string* message = nullptr) {
    try {
        call();
    } catch (const gpsproject::ProjectError& e) {
        if (message) *message = e.what();
        return e.GetKind();
    }
    ADD_FAILURE() << "nothing was thrown";
    return static_cast<gpsproject::ProjectError::Kind>(-1);
}

}  // namespace test
