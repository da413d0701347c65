#include "gps/model/NomeMinGps.h"

void IncrPunGpsItr(std::set<CPunGps*, NomeMinGps<CPunGps*>>::iterator& it) { ++it; }
