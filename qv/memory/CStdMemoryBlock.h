/// \file
/// CStdMemoryBlock: a block of the standard manager, CStdMemoryManager. It starts on a page
/// boundary and occupies whole pages of one of the manager's frames; only the manager makes
/// blocks, and its lists hold the only lasting reference to them.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/memory/CMemoryBlock.h>

class CStdMemoryManager;

class QV_EXPORT CStdMemoryBlock : public BSmartObj, public CMemoryBlock {
public:
    QV_DECLARE_CLASSNAME(CStdMemoryBlock)

    ~CStdMemoryBlock() override;

    // The virtual operations of CMemoryBlock. A block never changes after it is made, so any
    // thread may ask without a lock.
    void* Start() const override { return m_address; }
    void* End() const override { return static_cast<char*>(m_address) + m_size; }
    unsigned long long Size() const override { return m_size; }

    // The virtual operation added behind those of BSmartObj.
    /// The pages the block occupies: Size() rounded up to a multiple of the page size.
    virtual unsigned long long AllocatedSize() const;

    /// The first page above the block: Start() + AllocatedSize().
    void* PageAddressOverThis() const { return static_cast<char*>(m_address) + m_allocated_size; }
    /// The manager that made the block (not owned).
    CStdMemoryManager* Manager() const { return m_manager; }

private:
    friend class CStdMemoryManager;
    CStdMemoryBlock(CStdMemoryManager& manager, void* address, unsigned long long size,
                    unsigned long long allocatedSize);

    CStdMemoryManager* m_manager;
    unsigned long long m_size;
    unsigned long long m_allocated_size;
    void* m_address;
};
