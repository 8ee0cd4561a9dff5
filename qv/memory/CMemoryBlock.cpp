#include <qv/memory/CMemoryBlock.h>

CMemoryBlock::~CMemoryBlock() = default;
