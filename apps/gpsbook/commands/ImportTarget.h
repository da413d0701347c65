// ImportTarget: what `gpsbook import` was asked for, and where in the book it goes.
#pragma once

#include <string>

#include "apps/gpsbook/commands/LogArguments.h"
#include "host/project/Project.h"

namespace gpsbook {

struct ImportArguments {
    std::string book;
    LogArguments log;
    std::string crs;
    std::string idle;
    bool skipExisting = false;
    bool live = false;
    bool each = false;
    bool json = false;
};

/// What is not given and the book knows.
LogDefaults DefaultsOf(gpsproject::Project& project);

/// Numbers go on where the book ends, so that no name is there twice.
long FirstFreeNumber(const CLibGps& book, const std::string& prefix);

bool HasGroup(const CLibGps& book, const std::string& name);

/// The group that --group names when it is there already; -1: new groups are made. Errors: CommandError.
int ExistingGroup(const CLibGps& book, const std::string& group);

/// Errors: CommandError (exitUsage) when neither the command line nor the book names one.
std::string SystemOfNewGroups(const ImportArguments& a, gpsproject::Project& project);

}  // namespace gpsbook
