#include "apps/gpsbook/commands/Section.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/BookSettings.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/VersionLimits.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/dump/SectionFile.h"
#include "gps/model/CLibGps.h"
#include "host/project/GpsSection.h"
#include "host/project/NotHeld.h"

namespace gpsbook {

namespace {

using gpsproject::Project;

struct Arguments {
    std::string book;
    std::string file;
    std::string version;
    bool overwrite = false;
    bool json = false;
};

std::int64_t PointsOf(const CLibGps& book) {
    std::int64_t points = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) points += book.GetPunArSize(g);
    return points;
}

void Tell(const Arguments& a, const std::string& file, const std::string& what, const CLibGps& book,
          short version, const std::vector<std::string>& notHeld) {
    const std::string otherwise = "the result could not be told, " + file + " is complete";
    if (a.json) {
        PrintJson({{"book", a.book},
                   {"file", a.file},
                   {"version", version},
                   {"groups", book.GetGrpArSize()},
                   {"points", PointsOf(book)},
                   {"not_held", notHeld}},
                  otherwise);
        return;
    }
    std::string text = fmt::format("{}: {}, version {}, {}, {}\n", file, what, version,
                                   Counted(book.GetGrpArSize(), "group"), Counted(PointsOf(book), "point"));
    for (const std::string& line : notHeld)
        text += "warning: not in version " + std::to_string(version) + ": " + line + '\n';
    PrintText(text, otherwise);
}

void Write(Arguments& a) {
    const short version = StreamVersionFrom("--version", a.version);
    const auto project = OpenToRead(a.book);
    EndReading(*project);  // a part of a book is not handed on as the whole
    a.book = project->GetPath();
    const std::vector<std::string> notHeld = gpsproject::NotHeldBy(*project, version);
    if (!IsSameFile(a.file, a.book)) NeedFreeName(a.file, a.overwrite);
    gpsproject::WriteSection(*project, a.file, version, a.overwrite);
    Tell(a, a.file, "GPS section", project->GetBook(), version, notHeld);
}

short VersionOf(const Arguments& a) {
    if (!a.version.empty()) return StreamVersionFrom("--version", a.version);
    if (SectionFile::Bare(a.file, Project::kNewestVersion).BeginsAsBook())
        throw CommandError(exitRefused, a.file +
                                            ": is a field book already; gpsbook section write makes a "
                                            "bare section of it");
    const std::vector<short> fitting = FittingVersions(a.file);
    if (fitting.size() == 1) return fitting.front();
    if (fitting.empty())
        throw CommandError(
            exitRefused,
            fmt::format("{}: the layout of no version ends where the file ends; it is no GPS section, or a "
                        "damaged one: gpsbook dump {} --version V, with its version, shows where it goes "
                        "wrong",
                        a.file, a.file));
    std::string versions;
    for (const short version : fitting)
        versions += fmt::format("{}{}", versions.empty() ? "" : ", ", version);
    throw CommandError(exitUsage, "--version: the file can be of several versions (" + versions +
                                      "); a bare section does not tell its own, so give it");
}

void Read(Arguments& a) {
    a.book = NewBookFile(a.book);
    if (IsSameFile(a.file, a.book))
        throw CommandError(exitUsage, "BOOK: \"" + a.book +
                                          "\" is the section itself, which the book would replace; give "
                                          "another name");
    const short version = VersionOf(a);
    Project project(version);
    gpsproject::ReadSection(a.file, version, project);
    CLibGps& book = project.GetBook();
    std::string crs;
    for (int g = book.GetGrpArSize() - 1; g >= 0; --g) {
        const CProiezPla& projection = book.GetGrpAt(g)->GetConvCoord()->GetConvLocal()->GetProiezPla();
        if (std::string its = projection.GetDefinizione(); !its.empty()) crs = std::move(its);
    }
    // Groups to come get the system of the first one that has such a name.
    if (!crs.empty()) project.GetSettings()[kSettingCrs] = crs;
    SaveNewBook(project, a.book, a.overwrite);
    Tell(a, a.book, "new field book", book, version, {});
}

void AddWrite(CLI::App& section, int& exitCode) {
    CLI::App* c =
        section.add_subcommand("write", "Write the GPS section of a field book as a file of its own");
    const auto a = std::make_shared<Arguments>();
    c->add_option("BOOK", a->book, "The field book")->required()->check(Filled());
    c->add_option("FILE", a->file, "The file to write")->required()->check(Filled());
    c->add_option("--version", a->version,
                  fmt::format("Stream version, {} to {}", Project::kOldestVersion, Project::kNewestVersion))
        ->required()
        ->type_name("V")
        ->check(Filled());
    c->add_flag("--overwrite", a->overwrite, "Replace the file when it exists");
    c->add_flag("--json", a->json, "Print what was written as JSON");
    c->footer(
        "Examples:\n"
        "  gpsbook section write site.gpsbook site.bin --version 1311");
    c->callback([a, &exitCode] { exitCode = RunCommand("section", [&] { Write(*a); }); });
}

void AddRead(CLI::App& section, int& exitCode) {
    CLI::App* c = section.add_subcommand("read", "Make a field book of a GPS section");
    const auto a = std::make_shared<Arguments>();
    c->add_option("FILE", a->file, "The bare section")->required()->check(Filled());
    c->add_option("BOOK", a->book, "The field book to make")->required()->check(Filled());
    c->add_option("--version", a->version, "Its stream version [the only one that fits]")
        ->type_name("V")
        ->check(Filled());
    c->add_flag("--overwrite", a->overwrite, "Replace a book that exists; it is kept as backup");
    c->add_flag("--json", a->json, "Print what was read as JSON");
    c->footer(
        "Examples:\n"
        "  gpsbook section read site.bin site.gpsbook --version 1311");
    c->callback([a, &exitCode] { exitCode = RunCommand("section", [&] { Read(*a); }); });
}

}  // namespace

void AddSectionCommand(CLI::App& app, int& exitCode) {
    CLI::App* section =
        app.add_subcommand("section", "Write and read the bare GPS section, for other programs");
    section->require_subcommand(1);
    AddWrite(*section, exitCode);
    AddRead(*section, exitCode);
}

}  // namespace gpsbook
