// How the standard manager keeps its memory.
//
// A frame is one region from VirtualAlloc. Its blocks sit in a map by start address; the free
// space of a frame is nothing but the gaps between neighbours in that map, so freeing is the
// removal of one entry and there is nothing to merge. Placing a block walks a frame's blocks
// from the lowest address and takes the first gap of the block's page-rounded size (first
// fit); a frame whose free total is below that size is skipped without a walk. Frames are
// tried oldest first; when none has a gap, a new frame of the later-frame size (or of the
// block's rounded size, if larger) is made and the block placed at its base.
//
// The figures (bytes in use, bytes reserved) are running sums kept under the lock, so they are
// exact at every moment another thread can see them, and reading them costs no walk.
//
// Freeing gives the block's pages back to the system (a decommit: resident memory drops)
// before the lock is taken: the block still occupies its gap until it leaves the map, so no
// other thread can be handed those pages meanwhile, and the system call does not hold up the
// threads that allocate. Reusing the gap later costs no system call, only the page faults of
// the first touch.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <map>
#include <qv/core/BError.h>
#include <qv/core/GetLastErrorMessage.h>
#include <qv/memory/CStdMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/operations/BCriticalSection.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/platform/VirtualMemory.h>
#include <unordered_map>
#include <vector>

namespace {

using qv::platform::MEM_COMMIT;
using qv::platform::MEM_DECOMMIT;
using qv::platform::MEM_RELEASE;
using qv::platform::PAGE_READWRITE;

unsigned long long SystemPageSize() {
    static unsigned long long const size = [] {
        qv::platform::SYSTEM_INFO info{};
        qv::platform::GetSystemInfo(&info);
        return static_cast<unsigned long long>(info.dwPageSize);
    }();
    return size;
}

// The size rounded up to whole pages; false when that does not fit 64 bits.
bool PageUp(unsigned long long size, unsigned long long& rounded) {
    unsigned long long const page = SystemPageSize();
    unsigned long long const rest = size % page;
    if (rest == 0) {
        rounded = size;
        return true;
    }
    if (size > ULLONG_MAX - (page - rest))
        return false;
    rounded = size + (page - rest);
    return true;
}

[[noreturn]] void RaiseAllocFailed() {
    throw BError(BError::kMemoryAllocFailed, GetLastErrorMessage());
}

// Rounds up or raises as the system would for a size it cannot give.
unsigned long long PageUpOrRaise(unsigned long long size) {
    unsigned long long rounded = 0;
    if (!PageUp(size, rounded)) {
        errno = ENOMEM;
        RaiseAllocFailed();
    }
    return rounded;
}

void PostChange() {
    QVPost(MSG_MEMORY_CHANGED, 0, 0);
}

struct Frame {
    // size is a whole number of pages; a refusal of the system (also for size 0) raises.
    explicit Frame(unsigned long long size)
        : base(static_cast<char*>(
              qv::platform::VirtualAlloc(nullptr, size, MEM_COMMIT, PAGE_READWRITE))),
          size(size) {
        if (!base)
            RaiseAllocFailed();
    }
    // Callers may still point into a frame that has blocks: only an empty one goes back.
    ~Frame() {
        if (blocks.empty())
            qv::platform::VirtualFree(base, 0, MEM_RELEASE);
    }
    Frame(Frame const&) = delete;
    Frame& operator=(Frame const&) = delete;

    std::uintptr_t Base() const { return reinterpret_cast<std::uintptr_t>(base); }
    bool Holds(std::uintptr_t address) const {
        return address >= Base() && address - Base() < size;
    }

    // The lowest address with allocated bytes free behind it, or 0 when the frame is full.
    std::uintptr_t FindGap(unsigned long long allocated) const {
        if (size - inUse < allocated)
            return 0;
        std::uintptr_t p = Base();
        for (auto const& [start, block] : blocks) {
            if (start - p >= allocated)
                return p;
            p = start + block->AllocatedSize();
        }
        return Base() + size - p >= allocated ? p : 0;
    }

    char* base;
    unsigned long long size;
    unsigned long long inUse = 0;
    std::map<std::uintptr_t, SP<CStdMemoryBlock>> blocks;
};

} // namespace

struct CStdMemoryManager::State {
    // Oldest first: allocation tries them in this order.
    std::vector<std::unique_ptr<Frame>> frames;
    // The same frames by base address, to find a block's frame without a walk.
    std::map<std::uintptr_t, Frame*> framesByBase;
    // Blocks of size 0 live in no frame.
    std::unordered_map<CStdMemoryBlock*, SP<CStdMemoryBlock>> emptyBlocks;
    unsigned long long frameSize = 0;
    unsigned long long inUse = 0;
    unsigned long long reserved = 0;

    void Append(std::unique_ptr<Frame> frame) {
        frames.reserve(frames.size() + 1);
        framesByBase.emplace(frame->Base(), frame.get());
        reserved += frame->size;
        frames.push_back(std::move(frame));
    }

    void Remove(Frame* frame) {
        reserved -= frame->size;
        framesByBase.erase(frame->Base());
        frames.erase(std::find_if(frames.begin(), frames.end(),
                                  [frame](auto const& f) { return f.get() == frame; }));
    }

    Frame* FrameHolding(void* address) const {
        auto const p = reinterpret_cast<std::uintptr_t>(address);
        auto above = framesByBase.upper_bound(p);
        if (above == framesByBase.begin())
            return nullptr;
        Frame* frame = std::prev(above)->second;
        return frame->Holds(p) ? frame : nullptr;
    }
};

CStdMemoryManager::CStdMemoryManager() : m_state(std::make_unique<State>()) {}

CStdMemoryManager::~CStdMemoryManager() = default;

bool CStdMemoryManager::Init(unsigned long long first, unsigned long long later) {
    BCriticalSection guard(&m_critical_section);
    unsigned long long frameSize = 0;
    // A later size too large to round gets the largest whole number of pages: the system will
    // refuse a frame of it when one is needed, as it would the size asked for.
    m_state->frameSize =
        PageUp(later, frameSize) ? frameSize : ULLONG_MAX / SystemPageSize() * SystemPageSize();
    m_state->Append(std::make_unique<Frame>(PageUpOrRaise(first)));
    return true;
}

CMemoryBlock* CStdMemoryManager::MemoryBlockAlloc(unsigned long long size) {
    if (size == 0) {
        BCriticalSection guard(&m_critical_section);
        SP<CStdMemoryBlock> block(new CStdMemoryBlock(*this, nullptr, 0, 0));
        m_state->emptyBlocks.emplace(block.get(), block);
        return block;
    }
    unsigned long long const allocated = PageUpOrRaise(size);
    BCriticalSection guard(&m_critical_section);
    State& state = *m_state;
    auto place = [&](Frame& frame, std::uintptr_t at) {
        SP<CStdMemoryBlock> block(
            new CStdMemoryBlock(*this, reinterpret_cast<void*>(at), size, allocated));
        frame.blocks.emplace(at, block);
        frame.inUse += allocated;
        state.inUse += allocated;
        PostChange();
        return block.get();
    };
    for (auto const& frame : state.frames)
        if (std::uintptr_t const at = frame->FindGap(allocated))
            return place(*frame, at);
    auto frame = std::make_unique<Frame>(std::max(state.frameSize, allocated));
    Frame& added = *frame;
    state.Append(std::move(frame));
    return place(added, added.Base());
}

void CStdMemoryManager::FreeMemoryBlock(CMemoryBlock* block) {
    if (!block)
        return;
    auto* stdBlock = dynamic_cast<CStdMemoryBlock*>(block);
    if (!stdBlock)
        throw BError(BError::kMemoryAllocFailed, u"$IDS_ErrorHint26");
    // A block of another manager is in none of this one's frames: nothing to do.
    if (stdBlock->Manager() != this)
        return;
    if (stdBlock->Size() != 0)
        qv::platform::VirtualFree(stdBlock->Start(), stdBlock->AllocatedSize(), MEM_DECOMMIT);

    BCriticalSection guard(&m_critical_section);
    State& state = *m_state;
    SP<CStdMemoryBlock> const hold(stdBlock);
    if (stdBlock->Size() == 0) {
        if (state.emptyBlocks.erase(stdBlock))
            PostChange();
        return;
    }
    Frame* frame = state.FrameHolding(stdBlock->Start());
    if (!frame)
        return;
    auto const it = frame->blocks.find(reinterpret_cast<std::uintptr_t>(stdBlock->Start()));
    if (it == frame->blocks.end() || it->second.get() != stdBlock)
        return;
    frame->blocks.erase(it);
    frame->inUse -= stdBlock->AllocatedSize();
    state.inUse -= stdBlock->AllocatedSize();
    if (frame->inUse == 0 && state.reserved > kReleaseLimit)
        state.Remove(frame);
    PostChange();
}

unsigned long long CStdMemoryManager::MemoryInUse() {
    BCriticalSection guard(&m_critical_section);
    return m_state->inUse;
}

unsigned long long CStdMemoryManager::TotalReservedMemory() {
    BCriticalSection guard(&m_critical_section);
    return m_state->reserved;
}

int CStdMemoryManager::NumberOfReservedBlocks() {
    return 1;
}

unsigned long long CStdMemoryManager::PageSize() {
    return SystemPageSize();
}

unsigned long long CStdMemoryManager::SizeOfAllocatedMemory() const {
    return const_cast<CStdMemoryManager*>(this)->MemoryInUse();
}

unsigned long long CStdMemoryManager::SizeOfLockedMemory() const {
    return const_cast<CStdMemoryManager*>(this)->MemoryInUse();
}

unsigned long long CStdMemoryManager::PAGESIZE() {
    return SystemPageSize();
}
