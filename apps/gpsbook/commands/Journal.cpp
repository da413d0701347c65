#include "apps/gpsbook/commands/Journal.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/JournalEntries.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/JournalRecover.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::FoundJournal;
using gpsproject::JournalTie;

struct Arguments {
    std::string book;
    bool json = false;
};

/// The tie as a word of the JSON, and in a sentence.
struct TieText {
    const char* word;
    const char* sentence;
};

TieText TieOf(const BookJournal& journal) {
    if (!journal.IsThere()) return {"none", "there is none: the book is as it was saved"};
    if (!journal.GetBookDamage().empty())
        return {"unknown", "the book itself is damaged, so that nothing tells how they belong together"};
    switch (journal.GetFound().tie) {
        case JournalTie::follows:
            return {"follows", "it holds edits that the file of the book does not have"};
        case JournalTie::saved:
            return {"saved", "all its edits are in the file of the book"};
        case JournalTie::foreign:
            return {"foreign", "it was begun on another save of the book, or on another book"};
        case JournalTie::none:
            break;
    }
    return {"empty", "nothing has been stored in it"};
}

const char* EndWord(JournalScan::End end) {
    switch (end) {
        case JournalScan::End::clean:
            return "clean";
        case JournalScan::End::torn:
            return "torn";
        case JournalScan::End::damaged:
            break;
    }
    return "damaged";
}

std::string Hex(std::uint64_t value) { return fmt::format("{:016x}", value); }

std::string Place(int position) { return position < 0 ? "" : fmt::format("{}", position); }

Json PlaceOrNull(int position) { return position < 0 ? Json(nullptr) : Json(position); }

EntryPlace PlaceIn(const BookJournal& journal, const JournalFrame& frame) {
    return PlaceOfEntry(FileOperations::System(), journal.GetFile(), journal.GetFound().path, frame);
}

std::vector<std::string> Cells(const BookJournal& journal, const JournalFrame& frame) {
    const EntryPlace place = PlaceIn(journal, frame);
    return {fmt::format("{}", frame.sequence),
            fmt::format("{}", frame.code),
            std::string(EntryKind(frame.code)),
            Place(place.group),
            Place(place.point),
            fmt::format("{}", frame.offset),
            fmt::format("{}", frame.payloadLength),
            fmt::format("{}", frame.durable),
            frame.more ? "" : "end"};
}

Json EntriesJson(const BookJournal& journal, const std::vector<JournalFrame>& frames) {
    Json all = Json::array();
    for (const JournalFrame& frame : frames) {
        const EntryPlace place = PlaceIn(journal, frame);
        all.push_back({{"sequence", frame.sequence},
                       {"code", frame.code},
                       {"kind", EntryKind(frame.code)},
                       {"group", PlaceOrNull(place.group)},
                       {"point", PlaceOrNull(place.point)},
                       {"offset", frame.offset},
                       {"bytes", frame.payloadLength},
                       {"durable", frame.durable},
                       {"edit_ends", !frame.more}});
    }
    return all;
}

/// What both commands tell first.
Json HeadJson(const BookJournal& journal) {
    const FoundJournal& found = journal.GetFound();
    const auto& header = found.scan.header;
    Json json{{"book", journal.GetBook()},
              {"journal", journal.IsThere() ? Json(found.path) : Json(nullptr)},
              {"bytes", journal.GetSize()},
              {"tie", TieOf(journal).word},
              {"end", EndWord(found.scan.end)},
              {"what", found.scan.what.empty() ? Json(nullptr) : Json(found.scan.what)}};
    json["header"] =
        header ? Json{{"id", Hex(header->id)}, {"base", Hex(header->base)}, {"first", header->firstSequence}}
               : Json(nullptr);
    return json;
}

void PrintTable(const BookJournal& journal) {
    const auto& scan = journal.GetFound().scan;
    TextTable table({{"entry", true},
                     {"code", true},
                     {"kind"},
                     {"group", true},
                     {"point", true},
                     {"byte", true},
                     {"length", true},
                     {"durable", true},
                     {"edit"}});
    for (const auto* frames : {&scan.frames, &scan.later})
        for (const JournalFrame& frame : *frames) table.Measure(Cells(journal, frame));
    constexpr std::size_t piece = 1 << 16;
    std::string out = table.Head();
    const auto print = [&](const std::vector<JournalFrame>& frames) {
        for (const JournalFrame& frame : frames) {
            out += table.Line(Cells(journal, frame));
            if (out.size() < piece) continue;
            PrintText(out);
            out.clear();
        }
    };
    print(scan.frames);
    if (!scan.later.empty()) out += "behind " + scan.what + ":\n";
    print(scan.later);
    PrintText(out);
}

// A book that cannot be read hides what its journal is to it; the journal itself is told all the same.
void EndAt(const BookJournal& journal) {
    if (journal.GetBookDamage().empty()) return;
    throw CommandError(exitRefused, journal.GetBook() + ": " + journal.GetBookDamage() +
                                        "; bring the book back first, its backup perhaps, then "
                                        "gpsbook journal salvage takes the points of the journal");
}

void List(const Arguments& a) {
    const BookJournal journal(a.book);
    const FoundJournal& found = journal.GetFound();
    const auto& scan = found.scan;
    if (a.json) {
        Json json = HeadJson(journal);
        json["in_book"] = found.after;
        json["entries"] = EntriesJson(journal, scan.frames);
        json["behind_damage"] = EntriesJson(journal, scan.later);
        PrintJson(json);
        return EndAt(journal);
    }
    std::string text =
        fmt::format("{}: {}\n", journal.IsThere() ? found.path : journal.GetBook() + ": journal",
                    TieOf(journal).sentence);
    if (scan.header)
        text += fmt::format("  {} bytes, journal {}, begun on save {}\n", journal.GetSize(),
                            Hex(scan.header->id), Hex(scan.header->base));
    if (found.after > 0) text += fmt::format("  entries up to {} are in the book\n", found.after);
    if (!scan.what.empty()) text += fmt::format("  {} at {}\n", EndWord(scan.end), scan.what);
    PrintText(text);
    if (!scan.frames.empty() || !scan.later.empty()) PrintTable(journal);
    EndAt(journal);
}

void Verify(const Arguments& a) {
    const BookJournal journal(a.book);
    const FoundJournal& found = journal.GetFound();
    const gpsproject::ReplayReport& replay = journal.GetReplay();
    const bool wrong = journal.GetWrongAt() >= 0;
    if (a.json) {
        Json json = HeadJson(journal);
        json["whole"] = !wrong && journal.GetBookDamage().empty();
        json["offset"] = wrong ? Json(journal.GetWrongAt()) : Json(nullptr);
        json["wrong"] = wrong ? Json(journal.GetWrong()) : Json(nullptr);
        json["entries"] = found.scan.frames.size() + found.scan.later.size();
        json["edits"] = replay.edits;
        json["unfinished"] = replay.unfinished;
        PrintJson(json);
    } else {
        std::string text =
            fmt::format("{}: {}\n", journal.IsThere() ? found.path : journal.GetBook() + ": journal",
                        TieOf(journal).sentence);
        if (found.scan.end == JournalScan::End::torn && journal.IsThere()) {
            text += "  torn at " + found.scan.what + '\n';
            if (!found.scan.later.empty())
                text += fmt::format(
                    "  {} behind it; gpsbook journal salvage takes their points, and every "
                    "other command that writes the book drops them\n",
                    CountedEntries(static_cast<std::int64_t>(found.scan.later.size())));
        }
        if (replay.edits > 0) text += "  " + ReplayText(replay) + (wrong ? " in front of it" : "") + '\n';
        if (replay.unfinished > 0)
            text += fmt::format("  {} of edits that are not complete, left out\n",
                                CountedEntries(replay.unfinished));
        PrintText(text);
    }
    EndAt(journal);
    if (wrong)
        throw CommandError(exitRefused, fmt::format("{}, byte {}: {}; gpsbook journal salvage {} takes what "
                                                    "can be used, and keeps the rest",
                                                    found.path, journal.GetWrongAt(), journal.GetWrong(),
                                                    journal.GetBook()));
}

void AddPart(CLI::App& app, int& exitCode, const std::string& name, const std::string& what,
             void (*run)(const std::string& book, bool json)) {
    CLI::App* c = app.add_subcommand(name, what);
    const auto a = std::make_shared<Arguments>();
    AddBook(*c, a->book);
    c->add_flag("--json", a->json, "Print it as JSON");
    c->footer("Examples:\n  gpsbook journal " + name + " site.gpsbook");
    c->callback([a, run, &exitCode] { exitCode = RunCommand("journal", [&] { run(a->book, a->json); }); });
}

}  // namespace

void AddJournalCommand(CLI::App& app, int& exitCode) {
    CLI::App* journal =
        app.add_subcommand("journal", "Look into the journal of a book, and bring back what it holds");
    journal->require_subcommand(1);
    AddPart(*journal, exitCode, "list", "List the entries of the journal",
            [](const std::string& book, bool json) {
                List({book, json});
            });
    AddPart(*journal, exitCode, "verify", "Check the journal to its last byte, and against its book",
            [](const std::string& book, bool json) {
                Verify({book, json});
            });
    AddPart(*journal, exitCode, "replay", "Bring the edits of the journal back, and save the book",
            ReplayJournal);
    AddPart(*journal, exitCode, "salvage",
            "Take what can be used of a journal that is damaged or not the book's own", SalvageJournal);
}

}  // namespace gpsbook
