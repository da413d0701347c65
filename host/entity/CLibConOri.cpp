#include "platform/entity/CLibConOri.h"

CLibConOri::~CLibConOri() = default;
