#include "apps/gpsbook/commands/Cloud.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/CloudText.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CloudStatus.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "host/project/ConflictResolution.h"

namespace gpsbook {

namespace {

using gpsproject::CloudConflict;
using gpsproject::Project;

struct StatusArguments {
    std::string book;
    bool json = false;
};

struct ResolveArguments {
    std::string book;
    std::vector<std::string> numbers;
    std::string group;
    bool all = false;
    bool mine = false;
    bool theirs = false;
    bool addAgain = false;
    bool json = false;
};

int NumberFrom(const std::string& text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end || number < 1)
        Usage("NUMBER", "\"" + text + "\" is no number of a conflict; gpsbook cloud status tells them");
    return number;
}

/// Whether the decision can be one about that conflict.
bool Fits(const ResolveArguments& a, const CloudConflict& conflict) {
    if (a.theirs) return conflict.kind == CloudConflict::Kind::field;
    if (a.addAgain) return conflict.kind == CloudConflict::Kind::kept;
    return true;
}

std::vector<int> NumbersFrom(const ResolveArguments& a) {
    std::vector<int> numbers;
    for (const std::string& text : a.numbers) {
        const int number = NumberFrom(text);
        if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) numbers.push_back(number);
    }
    return numbers;
}

std::vector<int> AllThatFit(const ResolveArguments& a, Project& project) {
    std::vector<int> numbers;
    for (const CloudConflict& conflict : project.GetCloud().GetState().conflicts)
        if (Fits(a, conflict)) numbers.push_back(conflict.number);
    return numbers;
}

/// Kept points go into groups that are added again with them.
void GroupsFirst(Project& project, std::vector<int>& numbers) {
    std::stable_partition(numbers.begin(), numbers.end(), [&](int number) {
        const CloudConflict* const conflict = project.GetCloud().FindConflict(number);
        return conflict && conflict->clash.kind == gpsproject::CloudKind::group;
    });
}

/// Positions follow what they come from: what is left of them is decided behind it.
void PositionsLast(Project& project, std::vector<int>& numbers) {
    const auto isPosition = [](const CloudConflict* conflict) {
        return conflict && conflict->kind == CloudConflict::Kind::field && conflict->clash.bit == CHG_COORD;
    };
    std::stable_partition(numbers.begin(), numbers.end(),
                          [&](int number) { return !isPosition(project.GetCloud().FindConflict(number)); });
}

void CheckArguments(const ResolveArguments& a) {
    const int decisions = (a.mine ? 1 : 0) + (a.theirs ? 1 : 0) + (a.addAgain ? 1 : 0);
    if (decisions != 1)
        throw CommandError(exitUsage, "give one of --mine, --theirs and --add-again: what is to be");
    if (a.all == !a.numbers.empty())
        throw CommandError(exitUsage,
                           "give the numbers of conflicts, or --all; gpsbook cloud status tells them");
    if (!a.group.empty() && !a.addAgain)
        throw CommandError(exitUsage, "--group: belongs to --add-again, for points");
}

/// What was done with one conflict.
struct Settled {
    int number;
    std::string item;
};

std::string ResolveOne(const ResolveArguments& a, Project& project, int number, int group) {
    const CloudConflict* const found = project.GetCloud().FindConflict(number);
    if (!found)
        throw CommandError(exitNotFound,
                           fmt::format("{}: there is no conflict {}; gpsbook cloud status tells "
                                       "which there are",
                                       project.GetPath(), number));
    const CloudConflict conflict = *found;  // what is settled leaves the list
    const std::string item = ConflictItem(project, conflict);
    if (a.mine) {
        KeepAsItIs(project, number);
        return item;
    }
    if (a.theirs) {
        TakeTheirs(project, number);
        return item;
    }
    const bool isGroup = conflict.clash.kind == gpsproject::CloudKind::group;
    if (isGroup && !a.group.empty() && !a.all)
        throw CommandError(
            exitUsage, fmt::format("--group: conflict {} is about a group, which stands in none", number));
    const int g = AddAgain(project, number, isGroup ? -1 : group);
    const CLibGps& book = project.GetBook();
    return PlaceText(book, {g, isGroup ? -1 : book.GetPunArSize(g) - 1});
}

void Resolve(const ResolveArguments& a) {
    CheckArguments(a);
    std::vector<int> numbers = NumbersFrom(a);
    const auto project = OpenToWrite(a.book);
    if (a.all) numbers = AllThatFit(a, *project);
    const int group = a.group.empty() ? -1 : FindGroup(project->GetBook(), a.group);
    if (a.addAgain) GroupsFirst(*project, numbers);
    if (a.theirs) PositionsLast(*project, numbers);
    std::set<int> before;
    for (const CloudConflict& one : project->GetCloud().GetState().conflicts) before.insert(one.number);
    std::vector<Settled> settled;
    {
        const gpsproject::BookCloud::Settling settling(project->GetCloud());
        for (const int number : numbers) {
            // What went with another one is settled.
            if (before.contains(number) && !project->GetCloud().FindConflict(number)) continue;
            settled.push_back({number, ResolveOne(a, *project, number, group)});
        }
    }
    if (!settled.empty()) SaveBook(*project);

    const std::size_t left = project->GetCloud().GetState().conflicts.size();
    const std::string otherwise =
        settled.empty() ? "the result could not be written" : SavedButUntold(project->GetPath());
    const auto computed = static_cast<std::int64_t>(before.size() - left - settled.size());
    const char* const decision = a.mine ? "mine" : a.theirs ? "theirs" : "add-again";
    if (a.json) {
        nlohmann::ordered_json all = nlohmann::ordered_json::array();
        for (const Settled& one : settled) all.push_back({{"number", one.number}, {"name", one.item}});
        PrintJson({{"book", project->GetPath()},
                   {"saved", !settled.empty()},
                   {"decision", decision},
                   {"settled", all},
                   {"computed", computed},
                   {"left", left}},
                  otherwise);
        return;
    }
    std::string text;
    for (const Settled& one : settled)
        text += fmt::format("{}: {}{}\n", one.number, Printable(one.item),
                            a.mine     ? " stays as it is here"
                            : a.theirs ? " takes the other value"
                                       : " was added again, as a new one");
    if (computed > 0)
        text += fmt::format("{} about positions: they are computed anew\n", Counted(computed, "conflict"));
    PrintText(fmt::format("{}{}: {} settled, {} left\n", text, project->GetPath(),
                          Counted(static_cast<std::int64_t>(settled.size()), "conflict"), left),
              otherwise);
}

void AddStatus(CLI::App& cloud, int& exitCode) {
    CLI::App* c = cloud.add_subcommand("status", "Tell what waits to be sent, and what is in conflict");
    const auto a = std::make_shared<StatusArguments>();
    AddBook(*c, a->book);
    c->add_flag("--json", a->json, "Print it as JSON");
    c->footer("Examples:\n  gpsbook cloud status site.gpsbook");
    c->callback(
        [a, &exitCode] { exitCode = RunCommand("cloud", [&] { TellCloudStatus(a->book, a->json); }); });
}

void AddResolve(CLI::App& cloud, int& exitCode) {
    CLI::App* c = cloud.add_subcommand("resolve", "Settle conflicts");
    const auto a = std::make_shared<ResolveArguments>();
    AddBook(*c, a->book);
    AddWords(*c, "NUMBER", a->numbers, "Conflicts, by their numbers");
    c->add_flag("--all", a->all, "All conflicts that the decision fits");
    c->add_flag("--mine", a->mine, "What stands in the book stays");
    c->add_flag("--theirs", a->theirs, "The other value comes into the book");
    c->add_flag("--add-again", a->addAgain, "What was deleted and kept comes in again, as a new one");
    c->add_option("--group", a->group, "Group that points come into [the one where they were]")
        ->type_name("GROUP")
        ->check(Filled());
    c->add_flag("--json", a->json, "Print what was done as JSON");
    c->footer(
        "Examples:\n"
        "  gpsbook cloud resolve site.gpsbook 3 --theirs\n"
        "  gpsbook cloud resolve site.gpsbook 4 5 --add-again --group Quay\n"
        "  gpsbook cloud resolve site.gpsbook --all --mine");
    c->callback([a, &exitCode] { exitCode = RunCommand("cloud", [&] { Resolve(*a); }); });
}

}  // namespace

void AddCloudCommand(CLI::App& app, int& exitCode) {
    CLI::App* cloud = app.add_subcommand(
        "cloud", "Tell what a shared book and its project differ in, and settle conflicts");
    cloud->require_subcommand(1);
    AddStatus(*cloud, exitCode);
    AddResolve(*cloud, exitCode);
}

}  // namespace gpsbook
