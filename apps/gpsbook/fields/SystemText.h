// SystemText: a plane system as a person enters it.
#pragma once

#include <string>

class CProiezPla;

namespace gpsbook {

/// Makes `projection` the system that the text names: AUTHORITY:code, a PROJ string, WKT (or its JSON form),
/// a URN or address of a definition, or the whole name of a system, with upper and lower case alike. Blanks
/// around it do not count. A system given by name is kept by its code, if it has one.
///
/// PROJ looks for systems of a similar name, too, and takes the first that it finds: such a text is refused,
/// and the system that PROJ would take is told.
/// Answers what is wrong, for people; empty when nothing is. `projection` is as it was then.
std::string ReadSystem(const std::string& text, CProiezPla& projection);

}  // namespace gpsbook
