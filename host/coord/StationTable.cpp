#include "host/coord/StationTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>

#include "host/base/Utf8.h"
#include "host/coord/Province.h"

namespace {

enum Column { id, name, country, region, province, x, y, z, frame, epoch, vx, vy, vz, source, kColumns };

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

// Names that columns have; the first of each is the one that is written.
struct ColumnName {
    std::string_view name;
    Column column;
};
constexpr ColumnName kNames[] = {
    {"id", id},         {"id4", id},
    {"name", name},     {"country", country},
    {"region", region}, {"province", province},
    {"x", x},           {"x_m", x},
    {"y", y},           {"y_m", y},
    {"z", z},           {"z_m", z},
    {"frame", frame},   {"epoch", epoch},
    {"vx", vx},         {"vx_m_yr", vx},
    {"vy", vy},         {"vy_m_yr", vy},
    {"vz", vz},         {"vz_m_yr", vz},
    {"source", source},
};
constexpr std::array kNeeded{id, x, y, z, frame};

// From the centre of the earth to any place on its surface.
constexpr double kLeastRadius = 6'340'000, kMostRadius = 6'400'000;  // metres
constexpr double kFastest = 1;                                       // metres a year; plates move centimetres

std::string_view NameOf(Column column) {
    for (const ColumnName& n : kNames)
        if (n.column == column) return n.name;
    return {};
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::string Lower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return out;
}

/// The text of a quoted cell, `at` behind its first quote and then behind its last; nothing when it has none.
std::optional<std::string> QuotedCell(std::string_view line, std::size_t& at) {
    std::string cell;
    for (;;) {
        const std::size_t quote = line.find('"', at);
        if (quote == std::string_view::npos) return std::nullopt;
        cell += line.substr(at, quote - at);
        at = quote + 1;
        if (at >= line.size() || line[at] != '"') return cell;
        cell += '"';  // two quotes are one of the text
        ++at;
    }
}

/// The cells of a line, without blanks around them; nothing when a quote is not closed, or has something
/// behind it.
std::optional<std::vector<std::string>> CellsOf(std::string_view line) {
    std::vector<std::string> cells;
    for (std::size_t at = 0;; ++at) {
        const std::size_t first = std::min(line.find_first_not_of(" \t", at), line.size());
        if (first < line.size() && line[first] == '"') {
            at = first + 1;
            auto cell = QuotedCell(line, at);
            const std::size_t comma = std::min(line.find(',', at), line.size());
            if (!cell || !Trimmed(line.substr(at, comma - at)).empty()) return std::nullopt;
            cells.push_back(*std::move(cell));
            at = comma;
        } else {
            const std::size_t comma = std::min(line.find(',', at), line.size());
            cells.emplace_back(Trimmed(line.substr(at, comma - at)));
            at = comma;
        }
        if (at >= line.size()) return cells;
    }
}

std::optional<double> NumberFrom(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

/// Reads the lines one after the other.
class Reader {
public:
    explicit Reader(StationTable& table) : table_(table) {}

    void Line(std::string_view line, std::size_t number) {
        line_ = number;
        if (Trimmed(line).empty() || line.front() == '#') return;
        const auto cells = CellsOf(line);
        if (!cells) return Problem("a quote is not closed, or something stands behind it");
        if (!headed_)
            Head(*cells);
        else if (usable_)
            Row(*cells);
    }

    bool Headed() const { return headed_; }

private:
    void Problem(std::string what) { table_.problems.push_back({line_, std::move(what)}); }

    void Head(const std::vector<std::string>& cells) {
        headed_ = true;
        width_ = cells.size();
        at_.fill(kNowhere);
        usable_ = true;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::string title = Lower(cells[i]);
            const auto known = std::find_if(std::begin(kNames), std::end(kNames),
                                            [&](const ColumnName& n) { return n.name == title; });
            if (known == std::end(kNames)) {
                table_.passedOver.push_back(cells[i]);
                continue;
            }
            if (at_[known->column] != kNowhere) Unusable("the column " + title + " is there twice");
            at_[known->column] = i;
        }
        for (const Column needed : kNeeded)
            if (at_[needed] == kNowhere)
                Unusable("no column " + std::string(NameOf(needed)) +
                         "; the first line names the columns, separated by commas: "
                         "id,name,country,region,province,x,y,z,frame,epoch,vx,vy,vz,source");
    }

    void Unusable(std::string what) {
        if (usable_) Problem(std::move(what));
        usable_ = false;
    }

    void Row(const std::vector<std::string>& cells) {
        if (cells.size() != width_)
            return Problem(std::to_string(cells.size()) + " cells where the first line has " +
                           std::to_string(width_) + "; quote a cell that holds a comma");
        cells_ = &cells;
        Station station;
        const std::string wrong = Fill(station);
        if (!wrong.empty()) return Problem(wrong);
        const auto& [ofId, ofFrame, ofEpoch] = station.Set();
        const auto [twin, isNew] = lines_.try_emplace(
            std::tuple(std::string(ofId), std::string(ofFrame), std::string(ofEpoch)), line_);
        if (!isNew)
            return Problem(station.id + " in " + station.frame + " at this epoch is in line " +
                           std::to_string(twin->second) + " already; keep one of them");
        table_.stations.push_back(std::move(station));
    }

    const std::string& Cell(Column column) const {
        static const std::string nothing;
        return at_[column] == kNowhere ? nothing : (*cells_)[at_[column]];
    }

    /// What is wrong; empty when all is right.
    std::string Fill(Station& s) const {
        for (const Column column : {id, name, country, region, province, frame, epoch, source})
            if (const std::string wrong = TextProblem(column); !wrong.empty()) return wrong;
        if (Cell(id).empty()) return "no id; give one, such as the first four letters of its files";
        if (Cell(frame).empty()) return "no frame; say \"not stated\" when it is not known";
        s.id = Cell(id);
        s.name = Cell(name);
        s.country = Cell(country);
        s.region = Cell(region);
        s.province = Cell(province);
        s.frame = Cell(frame);
        s.epoch = Cell(epoch);
        s.source = Cell(source);
        if (const std::string wrong = FillProvince(s); !wrong.empty()) return wrong;
        if (const std::string wrong = FillPosition(s); !wrong.empty()) return wrong;
        return FillVelocity(s);
    }

    // Names go into books, whose texts travel in lines with ';' between them.
    std::string TextProblem(Column column) const {
        const std::string& text = Cell(column);
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
        const std::string where = "the " + std::string(NameOf(column)) + " holds ";
        if ((column == id || column == name) && text.find(';') != std::string::npos)
            return where + "';', which no name can; choose another";
        if (std::any_of(text.begin(), text.end(), isControl)) return where + "a control character";
        return IsUtf8(text) ? "" : where + "bytes that are not UTF-8; save the table as UTF-8";
    }

    std::string FillProvince(Station& s) const {
        const std::string& text = s.province;
        const bool italian = s.country.empty() || Lower(s.country) == "ita" || Lower(s.country) == "it" ||
                             Lower(s.country) == "italy" || Lower(s.country) == "italia";
        if (!italian) {
            s.provincia = CTrovaNomeBaseGps::provEstero;
            return {};
        }
        if (text.empty()) return {};
        const auto known = ProvinciaFrom(text);
        // "any" and "abroad" are answers on a command line, and no place in Italy.
        if (!known || *known == CTrovaNomeBaseGps::provTutte || *known == CTrovaNomeBaseGps::provEstero)
            return "\"" + text + "\" is no province of Italy; give its sign, such as UD, or its name";
        s.provincia = *known;
        return {};
    }

    std::string FillPosition(Station& s) const {
        constexpr std::array columns{x, y, z};
        for (std::size_t k = 0; k < 3; ++k) {
            const auto value = NumberFrom(Cell(columns[k]));
            if (!value)
                return std::string(NameOf(columns[k])) + " is \"" + Cell(columns[k]) +
                       "\", which is no number; give metres with a decimal point";
            s.position[k] = *value;
        }
        const double radius = std::hypot(s.position[0], s.position[1], s.position[2]);
        if (radius < kLeastRadius || radius > kMostRadius)
            return "x, y, z are no place on the earth; give geocentric coordinates in metres";
        return {};
    }

    std::string FillVelocity(Station& s) const {
        if (Cell(vx).empty() && Cell(vy).empty() && Cell(vz).empty()) return {};
        constexpr std::array columns{vx, vy, vz};
        std::array<double, 3> velocity{};
        for (std::size_t k = 0; k < 3; ++k) {
            const auto value = NumberFrom(Cell(columns[k]));
            if (!value || std::abs(*value) > kFastest)
                return std::string(NameOf(columns[k])) + " is \"" + Cell(columns[k]) +
                       "\"; give all three velocities in metres a year, or none";
            velocity[k] = *value;
        }
        s.velocity = velocity;
        return {};
    }

    StationTable& table_;
    std::size_t line_ = 0;
    bool headed_ = false, usable_ = false;
    std::size_t width_ = 0;
    std::array<std::size_t, kColumns> at_{};
    const std::vector<std::string>* cells_ = nullptr;
    std::map<std::tuple<std::string, std::string, std::string>, std::size_t> lines_;
};

std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"") == std::string::npos && text == Trimmed(text) && !text.starts_with('#'))
        return text;
    std::string out = "\"";
    for (const char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + '"';
}

// The shortest that reads back, without an exponent; a velocity may be as small as a double can.
std::string Shortest(double value) {
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    return {text.data(), end};
}

std::string RowOf(const Station& s) {
    std::string row = Quoted(s.id) + ',' + Quoted(s.name) + ',' + Quoted(s.country) + ',' + Quoted(s.region) +
                      ',' + Quoted(s.province);
    for (const double value : s.position) row += ',' + Shortest(value);
    row += ',' + Quoted(s.frame) + ',' + Quoted(s.epoch);
    for (std::size_t k = 0; k < 3; ++k)
        row += ',' + (s.velocity ? Shortest((*s.velocity)[k]) : std::string());
    return row + ',' + Quoted(s.source) + '\n';
}

}  // namespace

StationTable ReadStationTable(std::string_view text) {
    StationTable table;
    Reader reader(table);
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        reader.Line(line, number);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!reader.Headed() && table.problems.empty())
        table.problems.push_back({0, "the table is empty; its first line names the columns"});
    return table;
}

std::string WriteStationTable(const std::vector<Station>& stations) {
    std::string text = "id,name,country,region,province,x,y,z,frame,epoch,vx,vy,vz,source\n";
    for (const Station& station : stations) text += RowOf(station);
    return text;
}
