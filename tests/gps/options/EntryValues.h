// EntryValues: the ten values of a display entry, in their order.
#pragma once

#include <string>

#include "platform/entity/COpzDisEgn.h"

namespace test {

inline std::string Values(const COpzDisEgn& entry) {
    std::string text;
    for (const short value : {entry.GetVisSimb(), entry.GetColSimb(), entry.GetColNome(), entry.GetColDesc(),
                              entry.GetColQuot(), entry.GetTipoSimb(), entry.GetLwSimb(),
                              entry.GetLwNameSimb(), entry.GetLwDescSimb(), entry.GetLwQuotSimb()})
        text += (text.empty() ? "" : " ") + std::to_string(value);
    return text;
}

/// Sets them to first, first + 1 and so on.
inline void Fill(COpzDisEgn& entry, short first) {
    entry.SetVisSimb(first++);
    entry.SetColSimb(first++);
    entry.SetColNome(first++);
    entry.SetColDesc(first++);
    entry.SetColQuot(first++);
    entry.SetTipoSimb(first++);
    entry.SetLwSimb(first++);
    entry.SetLwNameSimb(first++);
    entry.SetLwDescSimb(first++);
    entry.SetLwQuotSimb(first++);
}

}  // namespace test
