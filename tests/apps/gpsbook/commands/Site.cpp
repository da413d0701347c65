#include "tests/apps/gpsbook/commands/Site.h"

#include <algorithm>

#include "gps/coords/FCalcCoord.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {

namespace {

void Name(CGrpGps& group, const char* name) {
    group.SetNomeGrp(name);
    group.SetNome(name);
}

void Fill(CLibGps& book) {
    CGrpGps& quay = *book.AddGrp(false);
    Name(quay, "Quay");
    quay.SetData("2024-05-01");
    SetUtm33(quay);
    for (int i = 0; i < 4; ++i) {
        CPunGps& point = *book.AddPun(0, false);
        point.SetNome("P" + std::to_string(i + 1));
        SetFix(point, 45.65 + 0.0001 * i, 13.76, 63.0 + i, 2);
        point.SetTod(point.GetTod() + static_cast<std::uint32_t>(i) * 60'000);
        point.SetQua(i == 2 ? 5 : 4);
    }
    Name(*book.AddGrp(false), "Pier");
    for (const char* name : {"A", "B"}) book.AddPun(1, false)->SetNome(name);
    FCalcCoordLibGps(&book, &book);
}

}  // namespace

Site::Site() : Site([](gpsproject::Project&) {}) {}

Site::Site(const std::function<void(gpsproject::Project&)>& alter) {
    gpsproject::Project project;
    Fill(project.GetBook());
    alter(project);
    project.SaveAs(Book(), false);
}

nlohmann::json Site::Show(const std::string& address) const {
    return JsonOf(Run({"show", "site.gpsbook", address, "--json"}));
}

nlohmann::json Site::Field(const std::string& address, const std::string& field) const {
    return Show(address)["fields"].at(field);
}

namespace {

std::string NamesOf(const nlohmann::json& items) {
    std::string names;
    for (const nlohmann::json& item : items)
        names += (names.empty() ? "" : " ") + item["name"].get<std::string>();
    return names;
}

}  // namespace

std::string Site::Groups() const {
    return NamesOf(JsonOf(Run({"list", "site.gpsbook", "--json"}))["groups"]);
}

std::string Site::Points(const std::string& group) const {
    return NamesOf(JsonOf(Run({"list", "site.gpsbook", group, "--json"}))["groups"][0]["points"]);
}

void Site::ExpectRefused(const std::vector<std::string>& arguments, int exitCode,
                         const std::string& words) const {
    const std::string bytes = Bytes();
    const std::vector<std::string> names = Names();
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, exitCode) << words << '\n' << outcome;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << words << '\n' << outcome;
    EXPECT_EQ(outcome.out, "") << outcome;
    EXPECT_TRUE(Bytes() == bytes) << "the book was changed: " << words;
    EXPECT_EQ(Names(), names) << words;
}

nlohmann::json JsonOf(const Outcome& outcome) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    nlohmann::json json = nlohmann::json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << outcome;
    return json;
}

}  // namespace gpsbook::test
