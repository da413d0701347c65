#include "apps/gpsbook/commands/TableArguments.h"

#include <CLI/CLI.hpp>

#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"

namespace gpsbook {

namespace {

std::string FormatNames(const char* between) {
    std::string names;
    for (const TableFormatInfo& info : TableFormats())
        names += (names.empty() ? "" : between) + std::string(info.option);
    return names;
}

TableFormat NamedFormat(const TableArguments& a) {
    if (!a.format.empty()) {
        if (const auto format = FormatFromOption(a.format)) return *format;
        Usage("--format", "\"" + a.format + "\" is unknown; give one of " + FormatNames(", "));
    }
    if (a.output == "-") return TableFormat::csv;
    if (const auto format = FormatFromName(a.output)) return *format;
    Usage("--output", "\"" + a.output + "\": the ending does not tell the format; give one with -f");
}

}  // namespace

TableFormat FormatFrom(const TableArguments& a) {
    const TableFormat format = NamedFormat(a);
    const TableFormatInfo& info = InfoOf(format);
    if (a.output == "-" && !info.toStandardOutput)
        Usage("--format", std::string(info.title) + " cannot go to standard output; give a file with -o");
    return format;
}

void AddTableOptions(CLI::App& command, TableArguments& a) {
    command.add_option("-o,--output", a.output, "File to write, - for standard output [-]")
        ->type_name("FILE")
        ->check(Filled());
    command.add_option("-f,--format", a.format, "Format [by the file's ending, else csv]")
        ->type_name(FormatNames("|"))
        ->check(Filled());
    command.add_flag("--overwrite", a.overwrite, "Replace the file when it exists");
}

}  // namespace gpsbook
