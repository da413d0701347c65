// What the model's classes show to tests only: the places of their own fields, and the lists themselves.
#pragma once

#include <cstddef>
#include <vector>

#include "gps/model/CLibGps.h"

struct NamedOffset {
    const char* name;
    std::size_t offset;
};

struct CPunGpsLayout {
    static std::vector<NamedOffset> Fields();
};

struct CGrpGpsLayout {
    static std::vector<NamedOffset> Fields();
    static std::vector<CPunGps*>& Points(CGrpGps& group) { return group.PunList; }
    static bool IsSpareCursorNull(const CGrpGps& group) {
        return group.SpareCursor == std::vector<CPunGps*>::iterator();
    }
};

struct CLibGpsLayout {
    static std::vector<NamedOffset> Fields();
    static std::vector<CGrpGps*>& Groups(CLibGps& book) { return book.GrpList; }
};
