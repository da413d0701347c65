#include "apps/gpsbook/book/Address.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/fields/NearNames.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

/// Positions, both ends included.
struct Range {
    int first;
    int last;
};

// "#12": 12. Nothing for any other text, which is a name then.
std::optional<int> Position(std::string_view text) {
    if (text.size() < 2 || text.front() != '#') return std::nullopt;
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 1, end, value);
    if (error != std::errc{} || stop != end || value < 0) return std::nullopt;
    return value;
}

// "#3..#7", "#3..", "#3"; `size`: of the list. Nothing for a text that is none.
std::optional<Range> Positions(std::string_view text, int size) {
    const std::size_t dots = text.find("..");
    if (dots == std::string_view::npos) {
        const auto at = Position(text);
        return at ? std::optional<Range>({*at, *at}) : std::nullopt;
    }
    const auto first = Position(text.substr(0, dots));
    if (!first) return std::nullopt;
    const std::string_view rest = text.substr(dots + 2);
    // Without an end, and at least one position, so that a beginning behind the list is told of.
    if (rest.empty()) return Range{*first, std::max(*first, size - 1)};
    const auto last = Position(rest);
    return last ? std::optional<Range>({*first, *last}) : std::nullopt;
}

// Why an address names nothing.
struct Problem {
    std::string text;
    ExitCode code = exitNotFound;
};

// No book can have such a range: the command line is wrong.
Problem Backwards(const Range& range) {
    return {fmt::format("the range runs backwards; write it #{}..#{}", range.last, range.first), exitUsage};
}

std::string CountText(int n, const char* one) { return fmt::format("{} {}{}", n, one, n == 1 ? "" : "s"); }

// "the book has 3 groups, #0 to #2"
std::string SizeText(const char* whose, int n, const char* one) {
    if (n == 0) return fmt::format("{} has no {}s", whose, one);
    return fmt::format("{} has {}, #0{}", whose, CountText(n, one),
                       n == 1 ? "" : fmt::format(" to #{}", n - 1));
}

// Every group that the text names; the problem says which are missing.
std::vector<Range> GroupsOf(const CLibGps& book, std::string_view text, Problem& problem) {
    const int size = book.GetGrpArSize();
    if (const auto range = Positions(text, size)) {
        if (range->first > range->last) {
            problem = Backwards(*range);
            return {};
        }
        if (range->last < size) return {*range};
        problem = {fmt::format("there is no group {}; {}", text, SizeText("the book", size, "group")),
                   exitNotFound};
        return {};
    }
    std::vector<Range> found;
    for (int g = 0; g < size; ++g)
        if (NameOf(*book.GetGrpAt(g)) == text) found.push_back({g, g});
    return found;
}

std::vector<Range> PointsOf(const CLibGps& book, int g, std::string_view text, Problem& problem) {
    const int size = book.GetPunArSize(g);
    const std::string group = PlaceText(book, {g, -1});
    if (const auto range = Positions(text, size)) {
        if (range->first > range->last) {
            problem = Backwards(*range);
            return {};
        }
        if (range->last < size) return {*range};
        problem = {
            fmt::format("there is no point {} in it; {}", text, SizeText(group.c_str(), size, "point")),
            exitNotFound};
        return {};
    }
    std::vector<Range> found;
    for (int p = 0; p < size; ++p)
        if (book.GetPunAt(g, p)->GetNome() == text) found.push_back({p, p});
    return found;
}

// One way to understand an address: all the places it would name.
struct Reading {
    std::vector<Place> places;
    bool several = false;  // a name that more than one have
};

void ReadAsGroup(const CLibGps& book, const std::string& address, std::vector<Reading>& readings,
                 Problem& problem) {
    const std::vector<Range> ranges = GroupsOf(book, address, problem);
    if (ranges.empty()) return;
    Reading reading;
    reading.several = ranges.size() > 1;
    for (const Range& range : ranges)
        for (int g = range.first; g <= range.last; ++g) reading.places.push_back({g, -1});
    readings.push_back(std::move(reading));
}

void ReadAsPoints(const CLibGps& book, const std::string& address, std::size_t slash,
                  std::vector<Reading>& readings, Problem& problem) {
    const std::string_view all(address);
    Problem wrong;
    const std::vector<Range> groups = GroupsOf(book, all.substr(0, slash), wrong);
    Reading reading;
    bool manyNames = false;
    int withPoints = 0;
    for (const Range& range : groups) {
        for (int g = range.first; g <= range.last; ++g) {
            const std::vector<Range> points = PointsOf(book, g, all.substr(slash + 1), wrong);
            manyNames = manyNames || points.size() > 1;
            withPoints += points.empty() ? 0 : 1;
            for (const Range& some : points)
                for (int p = some.first; p <= some.last; ++p) reading.places.push_back({g, p});
        }
    }
    if (problem.text.empty()) problem = wrong;
    if (reading.places.empty()) return;
    // Groups of one name are several only as far as they have such a point.
    reading.several = manyNames || (groups.size() > 1 && withPoints > 1);
    readings.push_back(std::move(reading));
}

std::string Numbered(const Place& place) {
    return place.IsPoint() ? fmt::format("#{}/#{}", place.group, place.point)
                           : fmt::format("#{}", place.group);
}

[[noreturn]] void RefuseAmbiguous(const std::string& address, const std::vector<Reading>& readings) {
    constexpr std::size_t most = 10;
    std::string list;
    std::size_t n = 0;
    for (const Reading& reading : readings)
        for (const Place& place : reading.places)
            if (n++ < most) list += (list.empty() ? "" : ", ") + Numbered(place);
    if (n > most) list += ", ...";
    throw CommandError(
        exitUsage, fmt::format("\"{}\" names {} of them: {}; give one by its position", address, n, list));
}

std::string LikeGroups(const CLibGps& book, std::string_view text) {
    NearNames near(text);
    for (int g = 0; g < book.GetGrpArSize(); ++g) near.Consider(NameOf(*book.GetGrpAt(g)));
    return near.Question();
}

[[noreturn]] void RefuseUnknown(const CLibGps& book, const std::string& address, const Problem& problem) {
    if (!problem.text.empty())
        throw CommandError(problem.code, fmt::format("\"{}\": {}", address, problem.text));
    // The longest beginning that is a group: what is behind it is no point of it.
    for (std::size_t slash = address.rfind('/'); slash != std::string::npos && slash > 0;
         slash = address.rfind('/', slash - 1)) {
        Problem unused;
        const std::vector<Range> groups = GroupsOf(book, std::string_view(address).substr(0, slash), unused);
        if (groups.empty()) continue;
        const int g = groups.front().first;
        const std::string_view name = std::string_view(address).substr(slash + 1);
        NearNames near(name);
        for (int p = 0; p < book.GetPunArSize(g); ++p) near.Consider(book.GetPunAt(g, p)->GetNome());
        throw CommandError(exitNotFound, fmt::format("\"{}\": group {} has no point \"{}\"{}", address,
                                                     PlaceText(book, {g, -1}), name, near.Question()));
    }
    const std::size_t slash = address.find('/');
    std::string like = LikeGroups(book, address);
    if (like.empty() && slash != std::string::npos)
        like = LikeGroups(book, std::string_view(address).substr(0, slash));
    if (like.empty()) like = "; " + SizeText("the book", book.GetGrpArSize(), "group");
    throw CommandError(exitNotFound,
                       fmt::format("there is no group \"{}\"{}", address.substr(0, slash), like));
}

}  // namespace

const std::string& NameOf(const CGrpGps& group) {
    return group.GetNomeGrp().empty() ? group.GetNome() : group.GetNomeGrp();
}

std::vector<Place> FindPlaces(const CLibGps& book, const std::string& address) {
    if (address.empty())
        throw CommandError(
            exitUsage, "an address is empty; give the name of a group or point, or its position like '#0'");
    std::vector<Reading> readings;
    Problem problem;
    ReadAsGroup(book, address, readings, problem);
    for (std::size_t slash = address.find('/'); slash != std::string::npos;
         slash = address.find('/', slash + 1))
        ReadAsPoints(book, address, slash, readings, problem);
    if (readings.empty()) RefuseUnknown(book, address, problem);
    if (readings.size() > 1 || readings.front().several) RefuseAmbiguous(address, readings);
    return std::move(readings.front().places);
}

std::vector<Place> FindPlaces(const CLibGps& book, const std::vector<std::string>& addresses) {
    std::vector<Place> all;
    for (const std::string& address : addresses) {
        const std::vector<Place> some = FindPlaces(book, address);
        all.insert(all.end(), some.begin(), some.end());
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

Place FindPlace(const CLibGps& book, const std::string& address) {
    const std::vector<Place> places = FindPlaces(book, address);
    if (places.size() > 1)
        throw CommandError(exitUsage,
                           fmt::format("\"{}\" names {} groups or points; give one", address, places.size()));
    return places.front();
}

int FindGroup(const CLibGps& book, const std::string& address) {
    const Place place = FindPlace(book, address);
    if (place.IsPoint()) throw CommandError(exitUsage, "\"" + address + "\" is a point; give a group");
    return place.group;
}

std::vector<int> FindGroups(const CLibGps& book, const std::vector<std::string>& addresses) {
    std::vector<int> groups;
    for (const Place& place : FindPlaces(book, addresses)) {
        if (place.IsPoint())
            throw CommandError(exitUsage, "\"" + PlaceText(book, place) + "\" is a point; give groups only");
        groups.push_back(place.group);
    }
    return groups;
}

std::string PlaceText(const CLibGps& book, const Place& place) {
    const std::string& name = NameOf(*book.GetGrpAt(place.group));
    std::string text = name.empty() ? fmt::format("#{}", place.group) : name;
    if (!place.IsPoint()) return text;
    const std::string& point = book.GetPunAt(place.group, place.point)->GetNome();
    return text + "/" + (point.empty() ? fmt::format("#{}", place.point) : point);
}

}  // namespace gpsbook
