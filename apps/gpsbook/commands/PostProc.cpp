#include "apps/gpsbook/commands/PostProc.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/fields/TextRules.h"
#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "platform/base/fileHelpers.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using ObservationFile = COpzPostProc::TDatiStaticPtBaseLine;

struct Arguments {
    std::string book;
    std::vector<std::string> files;
    bool base = false;
    bool again = false;
    bool json = false;
};

// A list that the next save would not keep is not begun.
void NeedPlaceFor(const gpsproject::Project& project) {
    constexpr short kFirst = 1002;
    if (project.GetStreamVersion() < kFirst)
        throw CommandError(
            exitRefused, fmt::format("{}: its stream version {} has no place for lists of observation files, "
                                     "which came with {}; write its section and read it into a newer book",
                                     project.GetPath(), project.GetStreamVersion(), kFirst));
}

const char* KindOf(bool base) { return base ? "base" : "rover"; }

std::vector<ObservationFile>& ListOf(COpzPostProc& options, bool base) {
    return base ? options.vecPtBaseLineBase : options.vecPtBaseLineDett;
}

std::string Absolute(const std::string& file) {
    return std::filesystem::absolute(PercorsoDiSistema(file.c_str())).lexically_normal().string();
}

Json Real(double v) { return IsCoordValid(v) ? Json(v) : Json(nullptr); }

Json FileJson(const ObservationFile& f, std::size_t index, bool base, const std::string& results) {
    return {{"index", index},
            {"kind", KindOf(base)},
            {"file", f.sFile},
            {"exists", f.bFileExists},
            {"text1", f.sText1},
            {"text2", f.sText2},
            {"index2", f.nIdx2},
            {"index3", f.nIdx3},
            {"flag1", f.bFlag1},
            {"flag3", f.bFlag3},
            {"flag4", f.bFlag4},
            {"alternative", f.bAltValue},
            {"value", Real(f.dValue)},
            {"a", {Real(f.dA1), Real(f.dA2), Real(f.dA3)}},
            {"b", {Real(f.dB1), Real(f.dB2), Real(f.dB3)}},
            {"results", results}};
}

// The results as lines of their own, indented; they end in CR and LF.
std::string Indented(const std::string& results) {
    std::string out;
    for (std::size_t at = 0; at < results.size();) {
        const std::size_t end = std::min(results.find("\r\n", at), results.size());
        out += "      " + results.substr(at, end - at) + '\n';
        at = end + 2;
    }
    return out;
}

/// Both lists, as text and as JSON.
struct Listing {
    std::string text;
    Json files = Json::array();
    std::size_t rovers = 0, bases = 0;
};

Listing ListFiles(COpzPostProc& options) {
    Listing listing;
    for (const bool base : {false, true}) {
        std::vector<ObservationFile>& list = ListOf(options, base);
        (base ? listing.bases : listing.rovers) = list.size();
        for (std::size_t i = 0; i < list.size(); ++i) {
            list[i].bFileExists = FEsisteIlFile(list[i].sFile.c_str());  // not kept in a book
            const std::string results =
                base ? std::string() : options.GetFullResult(static_cast<unsigned>(i));
            listing.files.push_back(FileJson(list[i], i, base, results));
            fmt::format_to(std::back_inserter(listing.text), "{:<5} #{:<3} {:<8} {}\n", KindOf(base), i,
                           list[i].bFileExists ? "" : "missing", list[i].sFile);
            listing.text += Indented(results);
        }
    }
    return listing;
}

void Tell(const Arguments& a, const std::string& book, const std::string& did, COpzPostProc& options,
          const std::string& otherwise) {
    const Listing listing = ListFiles(options);
    if (a.json)
        PrintJson({{"book", book},
                   {"scanned", options.bDettScanned},
                   {"rovers", listing.rovers},
                   {"bases", listing.bases},
                   {"files", listing.files}},
                  otherwise);
    else
        PrintText(listing.text + fmt::format("{}: {}{}, {}\n", book, did,
                                             Counted(static_cast<std::int64_t>(listing.rovers), "rover file"),
                                             Counted(static_cast<std::int64_t>(listing.bases), "base file")),
                  otherwise);
}

void SaveAndTell(const Arguments& a, gpsproject::Project& project, const std::string& did) {
    project.GetEdits().OptionsChanged();
    SaveBook(project);
    Tell(a, project.GetPath(), did, *project.GetBook().GetOpzPostProc(),
         "the result could not be told, " + project.GetPath() + " is saved");
}

void Scan(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    NeedPlaceFor(*project);
    COpzPostProc& options = *project->GetBook().GetOpzPostProc();
    const int before = options.GetNumPtBaseLineDett();
    const bool known = options.bDettScanned;
    if (a.again) {
        options.DelAllDataPtBaseLineDett();
        options.bDettScanned = false;
    }
    const std::string path = Absolute(project->GetPath());
    options.FindTpsDettFilesInFolder(path.c_str());
    const std::string folder = EliminaEstensioneFile(path.c_str());
    if (a.again && !options.bDettScanned && before > 0)
        throw CommandError(
            exitNotFound, folder + ": no *.tps files are in this folder; the files that were known are kept");
    // Files that were known have only been looked at, and whether they are there is not stored.
    if (options.bDettScanned && (a.again || !known)) return SaveAndTell(a, *project, "");
    Tell(a, project->GetPath(), options.bDettScanned ? "" : "no *.tps files in " + folder + "; ", options,
         "the result could not be told");
}

void List(const Arguments& a) {
    const auto project = OpenToRead(a.book);
    COpzPostProc& options = *project->GetBook().GetOpzPostProc();
    for (const bool base : {false, true})
        for (ObservationFile& file : ListOf(options, base))
            file.bFileExists = FEsisteIlFile(file.sFile.c_str());
    Tell(a, project->GetPath(), "", options, "the result could not be told");
    EndReading(*project);
}

int IndexOf(COpzPostProc& options, bool base, const std::string& file) {
    const std::vector<ObservationFile>& list = ListOf(options, base);
    const std::string path = Absolute(file);
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i].sFile == file || Absolute(list[i].sFile) == path ||
            IsSameFile(PercorsoDiSistema(list[i].sFile.c_str()), path))
            return static_cast<int>(i);
    return -1;
}

void Add(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    NeedPlaceFor(*project);
    COpzPostProc& options = *project->GetBook().GetOpzPostProc();
    for (const std::string& file : a.files) {
        if (!FEsisteIlFile(file.c_str()))
            throw CommandError(exitNotFound, file + ": there is no such file; check the name");
        const std::string path = Absolute(file);
        if (const std::string problem = TextProblem(path); !problem.empty())
            Usage("FILE", path + ": " + problem);
        if (IndexOf(options, a.base, path) >= 0)
            Usage("FILE", fmt::format("{} is in the list of {} files already", file, KindOf(a.base)));
        if (a.base)
            options.AddDataPtBaseLineBase(path);
        else
            options.AddDataPtBaseLineDett(path);
    }
    SaveAndTell(a, *project, "");
}

// "#2" is a position, everything else the name of a file.
int Position(COpzPostProc& options, bool base, const std::string& text) {
    const auto size = ListOf(options, base).size();
    if (text.starts_with('#')) {
        std::size_t index = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + 1, end, index);
        if (error == std::errc{} && stop == end && index < size) return static_cast<int>(index);
    } else if (const int index = IndexOf(options, base, text); index >= 0) {
        return index;
    }
    throw CommandError(exitNotFound,
                       fmt::format("{}: not in the list of {} files, which has {}; gpsbook postproc "
                                   "list shows them",
                                   text, KindOf(base), size));
}

void Remove(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    NeedPlaceFor(*project);
    COpzPostProc& options = *project->GetBook().GetOpzPostProc();
    std::vector<int> positions;
    for (const std::string& file : a.files) positions.push_back(Position(options, a.base, file));
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    for (auto i = positions.rbegin(); i != positions.rend(); ++i) {
        if (a.base)
            options.DelDataPtBaseLineBaseAt(static_cast<unsigned>(*i));
        else
            options.DelDataPtBaseLineDettAt(static_cast<unsigned>(*i));
    }
    SaveAndTell(a, *project, "");
}

using Work = void (*)(const Arguments&);

std::shared_ptr<Arguments> AddWithin(CLI::App& postproc, CLI::App*& command, const char* name,
                                     const char* help, const char* examples, Work work, int& exitCode) {
    command = postproc.add_subcommand(name, help);
    const auto a = std::make_shared<Arguments>();
    command->add_option("BOOK", a->book, "The field book")->required()->check(Filled());
    command->add_flag("--json", a->json, "Print the files as JSON");
    command->footer(examples);
    command->callback([a, work, &exitCode] { exitCode = RunCommand("postproc", [&] { work(*a); }); });
    return a;
}

}  // namespace

void AddPostProcCommand(CLI::App& app, int& exitCode) {
    CLI::App* postproc =
        app.add_subcommand("postproc", "Observation files of rovers and bases for post-processing");
    postproc->require_subcommand(1);
    CLI::App* c = nullptr;
    const auto scan =
        AddWithin(*postproc, c, "scan", "Look for rover files, *.tps in the folder named like the book",
                  "Examples:\n"
                  "  gpsbook postproc scan site.gpsbook",
                  Scan, exitCode);
    c->add_flag("--again", scan->again,
                "Forget the rover files known so far, with all that is known of them");
    AddWithin(*postproc, c, "list", "List the files, and the lines of their results",
              "Examples:\n"
              "  gpsbook postproc list site.gpsbook --json",
              List, exitCode);
    const auto add = AddWithin(*postproc, c, "add", "Add files to a list",
                               "Examples:\n"
                               "  gpsbook postproc add site.gpsbook rover1.tps rover2.tps\n"
                               "  gpsbook postproc add site.gpsbook master.tps --base",
                               Add, exitCode);
    c->add_option("FILE", add->files, "Observation files")->required()->check(Filled());
    c->add_flag("--base", add->base, "Files of bases, not of rovers");
    const auto remove =
        AddWithin(*postproc, c, "remove", "Remove files from a list; the files themselves stay",
                  "Examples:\n"
                  "  gpsbook postproc remove site.gpsbook '#0' rover2.tps",
                  Remove, exitCode);
    c->add_option("FILE", remove->files, "Observation files, by name or position (#0)")
        ->required()
        ->check(Filled());
    c->add_flag("--base", remove->base, "Files of bases, not of rovers");
}

}  // namespace gpsbook
