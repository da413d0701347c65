// Wire: answers and pages as JSON text, as they are kept and sent.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/project/CloudMessages.h"

namespace gpssync {

/// Texts are UTF-8. See docs/formats/store.md.
std::string EncodeAnswer(const gpsproject::CommitAnswer& answer);
std::string EncodePage(const gpsproject::PullPage& page);

/// Nothing when the text is cut, is no JSON, or says anything that these do not say.
std::optional<gpsproject::CommitAnswer> DecodeAnswer(std::string_view text);
std::optional<gpsproject::PullPage> DecodePage(std::string_view text);

}  // namespace gpssync
