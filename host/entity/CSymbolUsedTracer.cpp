#include "platform/entity/CSymbolUsedTracer.h"

CSymbolUsedTracer::~CSymbolUsedTracer() = default;

void CSymbolUsedTracer::SymbolUsed(short) {}
