// SharedSite: the books of several people who share one project.
#pragma once

#include <string>
#include <vector>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {

/// The site of Site is anna's book, `site.gpsbook`; bert's is `bert.gpsbook`, which is empty. Each has a
/// device of their own. They share the project Dam of `shared.sqlite` when they have called Share.
class SharedSite : public Site {
public:
    using Site::Site;

    /// Runs the program on the installation of a person, who is the author of what is sent.
    Outcome As(const std::string& who, const std::vector<std::string>& arguments) const;

    /// Makes bert's book.
    void MakeBertsBook() const;

    /// Anna's book is sent, and bert takes it.
    void Share() const;

    /// Syncs a book that is shared; the JSON that it prints. The exit code has to be this one.
    nlohmann::json Sync(const std::string& who, int exitCode = 0) const;
    nlohmann::json Status(const std::string& who) const;

    /// The table of the points, a line a point, in order of their texts.
    std::vector<std::string> Table(const std::string& who) const;

    /// Both books hold the same points.
    void ExpectSame() const;

    static std::string BookOf(const std::string& who) {
        return who == "anna" ? "site.gpsbook" : who + ".gpsbook";
    }
    std::string DeviceOf(const std::string& who) const { return Path(who + ".device"); }

    /// `gpsbook show --json` of somebody's book: a field of an address.
    nlohmann::json FieldOf(const std::string& who, const std::string& address,
                           const std::string& field) const;
};

/// The words that share a book the first time.
std::vector<std::string> FirstSync(const std::string& book);

}  // namespace gpsbook::test
