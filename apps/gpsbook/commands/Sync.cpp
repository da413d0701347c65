#include "apps/gpsbook/commands/Sync.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

#include "apps/gpsbook/book/CloudText.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/SharedBook.h"
#include "apps/gpsbook/book/TakenText.h"
#include "apps/gpsbook/commands/CloudJson.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/FirstLines.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CLibGps.h"
#include "host/cloud/Device.h"
#include "host/cloud/Sync.h"
#include "host/cloud/SyncServer.h"
#include "platform/entity/CCloudManager.h"

namespace gpsbook {

namespace {

using gpsproject::CloudConflict;
using gpsproject::CloudLink;
using TakenItem = gpsproject::BookCloud::TakenItem;
using gpsproject::Project;
using gpssync::SyncReport;
using TransportKind = gpssync::TransportError::Kind;

struct Arguments {
    std::string book;
    std::string store;
    std::string project;
    std::string author;
    bool json = false;
};

/// What the program is about to do, on a terminal, while it does it.
class StepLine {
public:
    explicit StepLine(bool wanted) : on_(wanted && ::isatty(STDERR_FILENO) == 1) {}
    ~StepLine() {
        if (on_) fmt::print(stderr, "\r\x1b[K");
    }
    StepLine(const StepLine&) = delete;
    StepLine& operator=(const StepLine&) = delete;

    void Show(const char* what) const {
        if (!on_) return;
        fmt::print(stderr, "\r\x1b[K{} ...", what);
        (void)std::fflush(stderr);
    }

private:
    bool on_;
};

std::string AuthorFrom(const Arguments& a) {
    const char* const environment = std::getenv("GPS_SURVEY_AUTHOR");
    const bool named = environment && *environment;
    std::string author = !a.author.empty() ? a.author : named ? environment : gpssync::SystemAuthor();
    if (const std::string problem = gpssync::AuthorProblem(author); !problem.empty())
        throw CommandError(exitUsage, (a.author.empty() ? "GPS_SURVEY_AUTHOR: " : "--author: ") + problem);
    return author;
}

void CheckProjectName(const std::string& name) {
    if (name.empty()) return;  // the one that the book remembers
    if (const std::string problem = gpssync::ProjectNameProblem(name); !problem.empty())
        throw CommandError(exitUsage, "--project: " + problem);
}

/// Whose groups and points become new ones of a project that others have filled already.
void NoteAdded(const Project& project, const CLibGps& book, const gpssync::SharedProject& shared) {
    if (shared.made || book.GetGrpArSize() == 0 || shared.revision == 0) return;
    std::cerr << fmt::format(
        "note: {}: its {} come into the project beside those that are there; what others have sent of the "
        "same is there twice\n",
        project.GetPath(), Counted(book.GetGrpArSize(), "group"));
}

nlohmann::ordered_json TakenJson(const TakenItem& item) {
    return {{"what", WhatText(item.what)},
            {"kind", KindText(item.kind)},
            {"id", item.id},
            {"name", TakenName(item)},
            {"fields", FieldNames(item.kind, item.fields)},
            {"author", item.author},
            {"device", item.device}};
}

class Session {
public:
    explicit Session(const Arguments& a)
        : author_(AuthorFrom(a)),
          project_(OpenToWrite(a.book)),
          cloud_(project_->GetCloud()),
          device_(gpssync::OwnDevice()),
          json_(a.json) {
        CCloudManager::GetInstance()->SetDevId(device_);
        project_->GetEdits().End();  // every step is an edit of its own
        Connect(a);
    }

    void Run() {
        const int known = cloud_.GetState().lastConflict;
        const StepLine line(!json_);
        try {
            report_ = gpssync::Sync(*project_, *transport_, {device_, author_}, [&](const char* what) {
                line.Show(what);
                if (std::string_view(what) == "send") SaveWithItsBackup();
                if (IsAskedToEnd()) throw CommandError(exitFailure, project_->GetPath() + ": interrupted");
            });
        } catch (const CommandError& e) {
            throw CommandError(e.Code(), e.what() + Saved(true));
        } catch (const gpssync::TransportError& e) {
            throw gpssync::TransportError(e.GetKind(),
                                          e.what() + Saved(e.GetKind() == TransportKind::noAnswer));
        }
        SaveSynced(*project_);
        for (const CloudConflict& conflict : cloud_.GetState().conflicts)
            if (conflict.number > known) new_.push_back(conflict);
    }

    void Print() {
        const std::string otherwise = SavedButUntold(project_->GetPath());
        if (json_)
            PrintJson(Json(), otherwise);
        else
            PrintText(Text(), otherwise);
        if (!new_.empty())
            throw CommandError(
                exitConflict,
                fmt::format("{}: {}; gpsbook cloud resolve settles what is to be", project_->GetPath(),
                            Counted(static_cast<std::int64_t>(new_.size()), "new conflict")));
        if (report_.refused > 0)
            throw CommandError(exitConflict,
                               fmt::format("{}: {} not taken by the project; correct what is wrong and sync "
                                           "again",
                                           project_->GetPath(), Counted(report_.refused, "record")));
    }

private:
    void Connect(const Arguments& a) {
        const std::string& book = project_->GetPath();
        const bool first = !cloud_.IsLinked();
        if (first && (a.store.empty() || a.project.empty()))
            throw CommandError(exitUsage,
                               book +
                                   ": is not shared yet; give the store with --store, and the name of the "
                                   "project with --project");
        const CloudLink link = cloud_.GetState().link;
        const std::string store = a.store.empty() ? link.store : StoreToRemember(book, a.store);
        transport_ = OpenStoreOf(book, store, first);
        if (!first && a.store.empty() && a.project.empty()) return;
        const gpssync::SharedProject shared =
            LinkTo(store, a.project.empty() ? link.project : a.project, first);
        if (first) NoteAdded(*project_, project_->GetBook(), shared);
        made_ = shared.made;
        linked_ = first;
        // What is sent from here on is the project's: no crash may leave a book that knows nothing of it.
        if (!(cloud_.GetState().link == link)) SaveSynced(*project_);
    }

    gpssync::SharedProject LinkTo(const std::string& store, const std::string& name, bool make) {
        try {
            return gpssync::LinkBook(*project_, *transport_, store, name, make);
        } catch (const gpssync::TransportError& e) {
            if (e.GetKind() != TransportKind::notFound) throw;
            throw CommandError(
                exitNotFound,
                fmt::format(
                    "{}: holds no project '{}'; --store names another store, --project another project",
                    Printable(StoreFile(project_->GetPath(), store)), Printable(name)));
        }
    }

    /// Twice: book and backup know the commit from then on, also when the sync ends before its last save.
    /// Whoever goes back to the backup repeats the commit, and does not send the same points a second time.
    void SaveWithItsBackup() {
        project_->Save();
        project_->Save();
    }

    /// What an error leaves. One that stays as it is ends the next sync, too.
    std::string Saved(bool passes) {
        try {
            SaveSynced(*project_);
        } catch (const gpsproject::ProjectError& e) {
            return fmt::format("; {}; what was sent and taken is in its journal", e.what());
        }
        return passes
                   ? "; what was sent and taken until then is saved, the next sync goes on with it"
                   : "; what was sent and taken until then is saved, and the book keeps what it has to send";
    }

    std::string Text() {
        const auto& state = cloud_.GetState();
        std::string text =
            fmt::format("{}: {}project {} of {}{}, revision {}\n", project_->GetPath(),
                        linked_ ? "now shared, " : "", Printable(state.link.project),
                        Printable(state.link.store), made_ ? ", which is new there" : "", report_.revision);
        if (report_.repeated) text += "  a commit of an earlier sync was answered now\n";
        text += fmt::format("  sent: {} new, {} changed, {} deleted\n", report_.added, report_.changed,
                            report_.deleted);
        text += fmt::format("  taken: {}, {}, {} deleted\n", Counted(report_.taken.groups, "group"),
                            Counted(report_.taken.points, "point"), report_.taken.deleted);
        // Whoever has just come in takes everything, which lists tell better.
        if (!linked_)
            text += FirstLines(report_.taken.items, "; --json tells all\n",
                               [&](const TakenItem& item) { return "    " + TakenLine(item); });
        if (report_.held > 0)
            text += fmt::format("  held back: {}; gpsbook cloud status tells why\n",
                                Counted(report_.held, "item"));
        if (report_.refused > 0)
            text += FirstLines(state.refusals, "; gpsbook cloud status --json tells all\n",
                               [](const gpsproject::CloudRefusal& refusal) {
                                   return fmt::format("  refused: {}: {}\n", RefusedItem(refusal),
                                                      Printable(refusal.reason));
                               });
        text += FirstLines(
            new_, "; gpsbook cloud status --json tells all\n",
            [&](const CloudConflict& conflict) { return "  conflict " + ConflictLine(*project_, conflict); });
        return text;
    }

    nlohmann::ordered_json Json() {
        const auto& state = cloud_.GetState();
        nlohmann::ordered_json json = LinkJson(*project_);
        json["linked_now"] = linked_;
        json["new_project"] = made_;
        json["repeated"] = report_.repeated;
        json["sent"] = {{"new", report_.added}, {"changed", report_.changed}, {"deleted", report_.deleted}};
        json["taken"] = {{"groups", report_.taken.groups},
                         {"points", report_.taken.points},
                         {"deleted", report_.taken.deleted}};
        json["taken_items"] = nlohmann::ordered_json::array();
        for (const TakenItem& item : report_.taken.items) json["taken_items"].push_back(TakenJson(item));
        json["held"] = HeldJson(*project_);
        json["refused"] = report_.refused > 0 ? RefusedJson(state) : nlohmann::ordered_json::array();
        json["conflicts"] = nlohmann::ordered_json::array();
        for (const CloudConflict& conflict : new_)
            json["conflicts"].push_back(ConflictJson(*project_, conflict));
        return json;
    }

    const std::string author_;
    const std::unique_ptr<Project> project_;
    gpsproject::BookCloud& cloud_;
    const std::int32_t device_;
    const bool json_;
    std::unique_ptr<gpssync::Transport> transport_;
    SyncReport report_;
    std::vector<CloudConflict> new_;
    bool made_ = false;    // the project
    bool linked_ = false;  // the book, just now
};

void Run(const Arguments& a) {
    CheckProjectName(a.project);
    Session session(a);
    session.Run();
    session.Print();
}

}  // namespace

void AddSyncCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("sync", "Share a book with others through a store");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("--store", a->store, "File of the store, the first time and when it has moved")
        ->type_name("FILE")
        ->check(Filled());
    command->add_option("--project", a->project, "Name of the project there, the first time")
        ->type_name("NAME")
        ->check(Filled());
    command
        ->add_option("--author", a->author, "Who you are, for others [$GPS_SURVEY_AUTHOR, or user@computer]")
        ->type_name("TEXT")
        ->check(Filled());
    command->add_flag("--json", a->json, "Print what was done as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook sync site.gpsbook --store /mnt/office/shared.sqlite --project Dam\n"
        "  gpsbook sync site.gpsbook");
    command->callback([a, &exitCode] { exitCode = RunCommand("sync", [&] { Run(*a); }); });
}

}  // namespace gpsbook
