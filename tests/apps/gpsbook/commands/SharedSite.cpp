#include "tests/apps/gpsbook/commands/SharedSite.h"

#include <algorithm>

namespace gpsbook::test {

Outcome SharedSite::As(const std::string& who, const std::vector<std::string>& arguments) const {
    Surroundings around;
    around.environment = {{"GPS_SURVEY_DEVICE", DeviceOf(who)}, {"GPS_SURVEY_AUTHOR", who}};
    return Run(arguments, around);
}

void SharedSite::MakeBertsBook() const {
    const Outcome made = Run({"new", "bert.gpsbook", "--crs", "EPSG:32633"});
    EXPECT_EQ(made.exitCode, 0) << made;
}

void SharedSite::Share() const {
    MakeBertsBook();
    for (const char* who : {"anna", "bert"}) {
        const Outcome first = As(who, FirstSync(BookOf(who)));
        EXPECT_EQ(first.exitCode, 0) << who << '\n' << first;
    }
}

nlohmann::json SharedSite::Sync(const std::string& who, int exitCode) const {
    const Outcome outcome = As(who, {"sync", BookOf(who), "--json"});
    EXPECT_EQ(outcome.exitCode, exitCode) << who << '\n' << outcome;
    nlohmann::json json = nlohmann::json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << outcome;
    return json;
}

nlohmann::json SharedSite::Status(const std::string& who) const {
    return JsonOf(As(who, {"cloud", "status", BookOf(who), "--json"}));
}

std::vector<std::string> SharedSite::Table(const std::string& who) const {
    const Outcome outcome = Run({"export", BookOf(who)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    std::vector<std::string> lines = LinesOf(outcome.out);
    std::sort(lines.begin(), lines.end());
    return lines;
}

void SharedSite::ExpectSame() const { EXPECT_EQ(Table("anna"), Table("bert")); }

nlohmann::json SharedSite::FieldOf(const std::string& who, const std::string& address,
                                   const std::string& field) const {
    return JsonOf(Run({"show", BookOf(who), address, "--json"}))["fields"].at(field);
}

std::vector<std::string> FirstSync(const std::string& book) {
    return {"sync", book, "--store", "shared.sqlite", "--project", "Dam"};
}

}  // namespace gpsbook::test
