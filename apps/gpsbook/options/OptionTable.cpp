#include "apps/gpsbook/options/OptionTable.h"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <type_traits>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/fields/TextRules.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"

namespace gpsbook {

namespace {

using Parameters = COpzPostProc::TParPostProc;

constexpr char kDisplaySection[] = "DIS-GPS-";
constexpr char kPostSection[] = "OPZ-POST-PROC";

template <class Value>
OptionValue ToValue(const Value& value) {
    if constexpr (std::is_same_v<Value, bool> || std::is_same_v<Value, std::string>)
        return value;
    else if constexpr (std::is_floating_point_v<Value>)
        return static_cast<double>(value);
    else
        return static_cast<std::int64_t>(value);
}

template <class Value>
Value FromValue(const OptionValue& value) {
    if constexpr (std::is_same_v<Value, bool> || std::is_same_v<Value, std::string> ||
                  std::is_floating_point_v<Value>)
        return std::get<Value>(value);
    else
        return static_cast<Value>(std::get<std::int64_t>(value));
}

template <class Value>
OptionEntry Entry(std::string name, const char* what, const Value& byDefault) {
    OptionEntry e;
    e.name = std::move(name);
    e.what = what;
    e.byDefault = ToValue(byDefault);
    if constexpr (std::is_same_v<Value, bool>) {
        e.kind = OptionKind::boolean;
    } else if constexpr (std::is_same_v<Value, std::string>) {
        e.kind = OptionKind::text;
    } else if constexpr (std::is_floating_point_v<Value>) {
        e.kind = OptionKind::real;
    } else {
        using Number = std::conditional_t<std::is_enum_v<Value>, std::int32_t, Value>;
        e.kind = OptionKind::integer;
        e.least = std::numeric_limits<Number>::min();
        e.most = std::numeric_limits<Number>::max();
    }
    return e;
}

void AddBook(std::vector<OptionEntry>& all) {
    const auto add = [&]<class Value>(const char* key, const char* what, Value COpzLibGps::*member,
                                      Value byDefault, bool inBook) -> OptionEntry& {
        OptionEntry e = Entry(std::string("book.") + key, what, byDefault);
        e.inBook = inBook;
        e.get = [member](CLibGps& book) { return ToValue(book.GetOpzLibGps().*member); };
        e.set = [member](CLibGps& book, const OptionValue& v) {
            book.GetOpzLibGps().*member = FromValue<Value>(v);
        };
        return all.emplace_back(std::move(e));
    };
    add("OpzValore", "a value of the host program", &COpzLibGps::OpzValore, short{0}, true);
    OptionEntry& calc =
        add("CalcLibCmp", "a setting of the host program", &COpzLibGps::CalcLibCmp, true, true);
    calc.section = "OPZ-GPS-VAR";
    calc.key = "CalcLibCmp";
    add("OpzFlagA", "a mark of the host program", &COpzLibGps::OpzFlagA, false, true);
    add("OpzFlagB", "a mark of the host program", &COpzLibGps::OpzFlagB, false, true);
}

struct DisplayRow {
    const char* key;
    const char* what;
    short (COpzDisEgn::*get)() const;
    void (COpzDisEgn::*set)(short);
    short ofPoints, ofBases;  // defaults
};

constexpr DisplayRow kDisplay[] = {
    {"VisSimb", "visibility of the symbol", &COpzDisEgn::GetVisSimb, &COpzDisEgn::SetVisSimb, 1, 1},
    {"ColSimb", "colour of the symbol", &COpzDisEgn::GetColSimb, &COpzDisEgn::SetColSimb, 5, 4},
    {"ColNome", "colour of the name", &COpzDisEgn::GetColNome, &COpzDisEgn::SetColNome, 5, 4},
    {"ColDesc", "colour of the description", &COpzDisEgn::GetColDesc, &COpzDisEgn::SetColDesc, 5, 4},
    {"ColQuot", "colour of the height", &COpzDisEgn::GetColQuot, &COpzDisEgn::SetColQuot, 5, 4},
    {"TipoSimb", "type of the symbol", &COpzDisEgn::GetTipoSimb, &COpzDisEgn::SetTipoSimb, 3, 6},
    {"LwSimb", "line width of the symbol", &COpzDisEgn::GetLwSimb, &COpzDisEgn::SetLwSimb, 0, 0},
    {"LwNameSimb", "line width of the name", &COpzDisEgn::GetLwNameSimb, &COpzDisEgn::SetLwNameSimb, 0, 0},
    {"LwDescSimb", "line width of the description", &COpzDisEgn::GetLwDescSimb, &COpzDisEgn::SetLwDescSimb, 0,
     0},
    {"LwQuotSimb", "line width of the height", &COpzDisEgn::GetLwQuotSimb, &COpzDisEgn::SetLwQuotSimb, 0, 0},
};

void AddList(std::vector<OptionEntry>& all) {
    OptionEntry e = Entry("display.VisList", "visibility of points and bases", short{1});
    e.inBook = true;
    e.section = "DIS-GPS";
    e.key = "VisList";
    e.get = [](CLibGps& book) { return ToValue(book.GetOpzListDisGps().GetVisList()); };
    e.set = [](CLibGps& book, const OptionValue& v) {
        book.GetOpzListDisGps().SetVisList(FromValue<short>(v));
    };
    all.push_back(std::move(e));
}

void AddDisplay(std::vector<OptionEntry>& all, bool points) {
    for (const DisplayRow& row : kDisplay) {
        OptionEntry e = Entry(fmt::format("{}.{}", points ? "points" : "bases", row.key), row.what,
                              points ? row.ofPoints : row.ofBases);
        e.inBook = true;
        // The visibility of points is written to the settings by other programs, but never read from there.
        if (!points || std::string_view(row.key) != "VisSimb") {
            e.section = std::string(kDisplaySection) + (points ? "Punti GPS" : "Basi GPS");
            e.key = row.key;
        }
        const auto entry = [points](CLibGps& book) -> COpzDisEgn& {
            return points ? book.GetOpzListDisGps().GetOpzPun() : book.GetOpzListDisGps().GetOpzGrp();
        };
        e.get = [entry, get = row.get](CLibGps& book) { return ToValue((entry(book).*get)()); };
        e.set = [entry, set = row.set](CLibGps& book, const OptionValue& v) {
            (entry(book).*set)(FromValue<short>(v));
        };
        all.push_back(std::move(e));
    }
}

template <class Access>
void AddParameter(std::vector<OptionEntry>& all, const char* key, Access access) {
    Parameters defaults;
    using Value = std::remove_reference_t<decltype(access(defaults))>;
    OptionEntry e =
        Entry(std::string("postproc.") + key, "a parameter of the processing engine", access(defaults));
    e.inBook = true;
    e.get = [access](CLibGps& book) { return ToValue(access(book.GetOpzPostProc()->ParPostProc)); };
    e.set = [access](CLibGps& book, const OptionValue& v) {
        access(book.GetOpzPostProc()->ParPostProc) = FromValue<Value>(v);
    };
    all.push_back(std::move(e));
}

void AddParameters(std::vector<OptionEntry>& all) {
#define PARAMETER(member) \
    AddParameter(         \
        all, #member, [](Parameters & p) -> auto& { return p.member; })
    PARAMETER(wPar1);
    PARAMETER(wPar2);
    PARAMETER(wPar3);
    PARAMETER(wPar4);
    PARAMETER(dPar1);
    PARAMETER(dPar2);
    PARAMETER(ePar1);
    PARAMETER(bPar1);
    PARAMETER(aValPair[0].dVal);
    PARAMETER(aValPair[0].nVal);
    PARAMETER(aValPair[1].dVal);
    PARAMETER(aValPair[1].nVal);
    PARAMETER(bPar2);
    PARAMETER(wPar5);
    PARAMETER(dPar3);
    PARAMETER(dPar4);
    PARAMETER(nPar1);
    PARAMETER(bPar3);
    PARAMETER(wPar6);
    PARAMETER(bPar4);
    PARAMETER(bPar5);
    PARAMETER(nPar2);
    PARAMETER(bPar6);
    PARAMETER(bPar7);
    PARAMETER(bPar8);
    PARAMETER(bPar9);
#undef PARAMETER
    for (OptionEntry& e : all) {
        if (e.name != "postproc.nPar1" && e.name != "postproc.nPar2") continue;
        e.least = std::numeric_limits<std::int16_t>::min();  // a book keeps 16 bits of them
        e.most = std::numeric_limits<std::int16_t>::max();
    }
}

void AddChoices(std::vector<OptionEntry>& all) {
    const auto add = [&]<class Value>(const char* key, const char* what, Value COpzPostProc::*member,
                                      const Value& byDefault) {
        OptionEntry e = Entry(std::string("postproc.") + key, what, byDefault);
        e.section = kPostSection;
        e.key = key;
        e.get = [member](CLibGps& book) { return ToValue(book.GetOpzPostProc()->*member); };
        e.set = [member](CLibGps& book, const OptionValue& v) {
            book.GetOpzPostProc()->*member = FromValue<Value>(v);
        };
        all.push_back(std::move(e));
    };
    const std::int32_t none = 0;
    const std::string empty;
    add("TpInsCoordBase", "how coordinates of bases are put in", &COpzPostProc::TpInsCoordBase, none);
    add("eOpzCreaNuoviPt", "whether and how new points are made", &COpzPostProc::eOpzCreaNuoviPt, none);
    add("sNumeGruppoSpec", "which groups are concerned", &COpzPostProc::sNumeGruppoSpec, empty);
    add("eOpzNomiNuoviPt", "how new points are named", &COpzPostProc::eOpzNomiNuoviPt, none);
    add("sSuffissoPtNuovi", "what is put behind names of new points", &COpzPostProc::sSuffissoPtNuovi, empty);
    add("eOpzNomiVecchiPt", "how replaced points are named", &COpzPostProc::eOpzNomiVecchiPt, none);
    add("sSuffissoPtVecchi", "what is put behind names of replaced points", &COpzPostProc::sSuffissoPtVecchi,
        std::string("_OLD"));
}

[[noreturn]] void Refuse(const OptionEntry& option, const std::string& text, const std::string& wanted) {
    throw CommandError(exitUsage, fmt::format("{}: \"{}\" is not {}", option.name, text, wanted));
}

}  // namespace

const std::vector<OptionEntry>& Options() {
    static const std::vector<OptionEntry> all = [] {
        std::vector<OptionEntry> list;
        AddBook(list);
        AddList(list);
        AddDisplay(list, true);
        AddDisplay(list, false);
        AddParameters(list);
        AddChoices(list);
        return list;
    }();
    return all;
}

const OptionEntry* FindOption(std::string_view name) {
    for (const OptionEntry& option : Options())
        if (option.name == name) return &option;
    return nullptr;
}

std::string OptionText(const OptionValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* number = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *number);
    if (const auto* real = std::get_if<double>(&value)) return fmt::format("{}", *real);
    return std::get<std::string>(value);
}

OptionValue ParseOption(const OptionEntry& option, const std::string& text) {
    switch (option.kind) {
        case OptionKind::boolean:
            if (text == "true" || text == "1") return true;
            if (text == "false" || text == "0") return false;
            Refuse(option, text, "true or false");
        case OptionKind::integer: {
            std::int64_t value = 0;
            const char* const end = text.data() + text.size();
            const auto [stop, error] = std::from_chars(text.data(), end, value);
            if (error != std::errc{} || stop != end || value < option.least || value > option.most)
                Refuse(option, text, fmt::format("a whole number from {} to {}", option.least, option.most));
            return value;
        }
        case OptionKind::real: {
            double value = 0;
            if (!ParseNumber(text, value)) Refuse(option, text, "a number like 0.95, at most 1e15");
            return value;
        }
        case OptionKind::text:
            break;
    }
    if (const std::string problem = TextProblem(text); !problem.empty())
        throw CommandError(exitUsage, option.name + ": " + problem);
    return text;
}

}  // namespace gpsbook
