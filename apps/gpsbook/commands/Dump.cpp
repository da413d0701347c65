#include "apps/gpsbook/commands/Dump.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/dump/FieldPrinter.h"
#include "apps/gpsbook/dump/SectionFile.h"
#include "apps/gpsbook/readers/FieldText.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string book;
    std::string version;  // of a bare section; empty: a field book
    bool json = false;
};

// Old versions can be looked at, though they are no longer written.
short BareVersion(const std::string& text) {
    int version = 0;
    if (!ParseCount(text, version) || version < 1 || version > gpsproject::Project::kNewestVersion)
        throw CommandError(exitUsage,
                           fmt::format("--version: \"{}\" is no version of a stream; give a number from 1 "
                                       "to {}",
                                       text, gpsproject::Project::kNewestVersion));
    return static_cast<short>(version);
}

// All that opening the book finds, checksums of the content included: damage that leaves the section in step
// shows in none of its fields.
std::vector<gpsproject::Damage> DamagesOf(const Arguments& a, const SectionFile& section) {
    std::vector<gpsproject::Damage> damages = section.GetDamages();
    if (!a.version.empty()) return damages;
    try {
        const auto project = gpsproject::Project::Open(BookFile(a.book), gpsproject::Project::Mode::read);
        if (project->GetReport().IsDamaged()) damages = project->GetReport().damages;
    } catch (const gpsproject::ProjectError&) {  // what the section itself tells is all there is
    }
    return damages;
}

// A file that is no book can be a bare section: the versions that fit are told.
SectionFile OpenedBook(const std::string& file) {
    try {
        return SectionFile::OfBook(file);
    } catch (const gpsproject::ProjectError& e) {
        if (e.GetKind() != gpsproject::ProjectError::Kind::damaged) throw;
        const std::vector<short> fitting = FittingVersions(file);
        if (fitting.empty()) throw;
        throw CommandError(exitRefused,
                           fmt::format("{}: is no field book, but can be a bare section; gpsbook dump {} "
                                       "--version {} shows it",
                                       file, file, fitting.front()));
    }
}

SectionFile OpenedSection(const std::string& file, short version) {
    SectionFile section = SectionFile::Bare(file, version);
    if (section.BeginsAsBook())
        throw CommandError(exitUsage,
                           "--version: " + file + " is a field book, no bare section; leave the option out");
    return section;
}

void Run(const Arguments& a) {
    const SectionFile section =
        a.version.empty() ? OpenedBook(BookFile(a.book)) : OpenedSection(a.book, BareVersion(a.version));
    const std::vector<gpsproject::Damage> damages = DamagesOf(a, section);
    for (const gpsproject::Damage& damage : damages)
        std::cerr << fmt::format("{}: byte {}: {}: {}\n", section.GetInfo().file, damage.offset,
                                 damage.section, damage.what);
    const auto source = section.Source();
    SectionBytes bytes(*source, section.GetInfo().offset, section.GetInfo().size);
    FieldPrinter printer(a.json);
    SectionDecoder decoder(bytes, section.GetInfo().version, printer);
    std::optional<SectionDamage> damage;
    printer.Begin(section.GetInfo());
    try {
        decoder.Run();
    } catch (const SectionDamage& e) {
        damage = e;
    }
    printer.End(decoder, damage);
    if (damage)
        throw CommandError(
            exitRefused,
            fmt::format("{}: byte {}: {}; {} groups and {} points are complete. Go back to the backup, "
                        "or save with gpsbook export what can be read",
                        section.GetInfo().file, damage->offset, damage->what, decoder.Groups(),
                        decoder.Points()));
    if (!damages.empty())
        throw CommandError(
            exitRefused,
            section.GetInfo().file + ": the file is damaged, though its GPS section can be read to its end");
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("BOOK", a.book, "The field book; with --version a file that is a bare section")
        ->required()
        ->check(Filled());
    c.add_option("--version", a.version, "The file is a bare section in this stream version")
        ->type_name("V")
        ->check(Filled());
    c.add_flag("--json", a.json, "Print the fields as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook dump site.gpsbook | less\n"
        "  gpsbook dump site.gpsbook --json > site.json\n"
        "  gpsbook dump section.bin --version 903");
}

}  // namespace

void AddDumpCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("dump", "Show the GPS section of a field book field by field");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("dump", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
