#include "saml/xml/node_pool.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define SAMLTOKEN_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SAMLTOKEN_POISONS 1
#endif
#endif
#ifdef SAMLTOKEN_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace Saml::Xml {
namespace {

constexpr std::size_t kFirstChunk = 4096;
constexpr std::size_t kLongestChunk = std::size_t{64} * 1024;
/// What is longer stands alone: no chunk is left half empty for it.
constexpr std::size_t kLongestInChunk = kFirstChunk / 2;

// A use of a freed node is found by AddressSanitizer although its chunk lives on.
void Poison([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) noexcept {
#ifdef SAMLTOKEN_POISONS
    ASAN_POISON_MEMORY_REGION(memory, size);
#endif
}
void Unpoison([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) noexcept {
#ifdef SAMLTOKEN_POISONS
    ASAN_UNPOISON_MEMORY_REGION(memory, size);
#endif
}

}  // namespace

/// Deletes itself after its pool has left it and the last of its nodes is freed.
///
/// The pool holds a share of the count that no number of nodes uses up, and hands a part of it to
/// each: so a node is allocated without an atomic operation. What is left goes back at once.
class NodePool::Chunk final {
  public:
    explicit Chunk(std::size_t size) : bytes_(new unsigned char[size]), size_(size) {}
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

    bool HasRoomFor(std::size_t size) const noexcept { return size <= size_ - used_; }
    unsigned char* Take(std::size_t size) noexcept {
        unsigned char* const taken = bytes_.get() + used_;
        used_ += size;
        ++nodes_;
        return taken;
    }
    void Leave() noexcept { Release(kShareOfPool - nodes_); }
    void FreeNode() noexcept { Release(1); }

  private:
    static constexpr std::size_t kShareOfPool = std::numeric_limits<std::size_t>::max();

    ~Chunk() { Unpoison(bytes_.get(), size_); }  // it becomes memory like any other

    // Who holds all that is left need not count: nobody else can.
    void Release(std::size_t share) noexcept {
        if (count_.load(std::memory_order_acquire) == share ||
            count_.fetch_sub(share, std::memory_order_acq_rel) == share)
            delete this;
    }

    const std::unique_ptr<unsigned char[]> bytes_;
    const std::size_t size_;
    std::size_t used_ = 0;
    std::size_t nodes_ = 0;
    std::atomic<std::size_t> count_{kShareOfPool};
};

void NodePool::Leave::operator()(Chunk* chunk) const noexcept {
    chunk->Leave();
}

namespace {

/// What stands in front of every node: its chunk, null for a node that stands alone.
struct Header {
    void* chunk;
};

constexpr std::size_t Padded(std::size_t size) noexcept {
    return (size + NodePool::kAlignment - 1) / NodePool::kAlignment * NodePool::kAlignment;
}

void* BehindHeader(void* memory, void* chunk) noexcept {
    return new (memory) Header{chunk} + 1;
}

}  // namespace

NodePool::NodePool() noexcept = default;
NodePool::~NodePool() = default;

void* NodePool::Allocate(std::size_t size) {
    if (size > kLongestInChunk) return AllocateAlone(size);
    const std::size_t needed = sizeof(Header) + Padded(size);
    if (!chunk_ || !chunk_->HasRoomFor(needed)) {
        const std::size_t length = std::min(std::max(taken_ / 2, kFirstChunk), kLongestChunk);
        chunk_.reset(new Chunk(length));
        taken_ += length;
    }
    return BehindHeader(chunk_->Take(needed), chunk_.get());
}

void* NodePool::AllocateAlone(std::size_t size) {
    return BehindHeader(::operator new(sizeof(Header) + size), nullptr);
}

void NodePool::Free(void* node, std::size_t size) noexcept {
    Header* const header = static_cast<Header*>(node) - 1;
    if (header->chunk == nullptr) {
        ::operator delete(header);
        return;
    }
    Poison(node, size);
    static_cast<Chunk*>(header->chunk)->FreeNode();
}

void NodePool::Retire() noexcept {
    chunk_.reset();
    taken_ = 0;
}

}  // namespace Saml::Xml
