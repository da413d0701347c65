// ExchangeReport: how the saving or loading of an exchange file ended, for people and for machines.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "apps/gpsbook/book/ExchangeCheck.h"
#include "apps/gpsbook/book/ExchangeLoad.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

/// "done", "a point or group found no place".
std::string ResultText(CLibGps::TResActionObj result);

/// Adds "result" and "resultText".
void AddResult(nlohmann::ordered_json& json, CLibGps::TResActionObj result);

/// Tells on standard error when a file that was saved promises more than it holds.
void NoteFalseCount(const std::string& file, ExchangeKind kind, int first, int last, int written);

/// What a load did, and the notes about it; `json` holds what is told before. `into`: "into group Quay".
void PrintLoad(nlohmann::ordered_json json, const std::string& book, const std::string& into, bool asJson,
               ExchangeKind kind, const LoadedItems& loaded, bool saved);

/// To be called when all is told. Errors: CommandError (exitConflict) for a result that is not "done".
void EndLoad(const std::string& file, const LoadedItems& loaded, bool saved);

}  // namespace gpsbook
