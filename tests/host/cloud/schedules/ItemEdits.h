// ItemEdits: random values for any field of a group or point.
#pragma once

#include <random>

#include "gps/model/CLibGps.h"

namespace test {

/// All fields get values.
void FillAnew(CGrpGps& group, std::mt19937& random);
void FillAnew(CPunGps& point, std::mt19937& random);

/// The fields of one change bit get values, not the tag.
void EditField(CGrpGps& group, std::uint32_t bit, std::mt19937& random);
void EditField(CPunGps& point, std::uint32_t bit, std::mt19937& random);

}  // namespace test
