#include "saml/xml/node_pool.h"

#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <algorithm>
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

class NodePool::Chunk final
    : public boost::intrusive_ref_counter<Chunk, boost::thread_safe_counter> {
  public:
    explicit Chunk(std::size_t size) : bytes_(new unsigned char[size]), size_(size) {}
    ~Chunk() { Unpoison(bytes_.get(), size_); }  // it becomes memory like any other
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

    bool HasRoomFor(std::size_t size) const noexcept { return size <= size_ - used_; }
    unsigned char* Take(std::size_t size) noexcept {
        unsigned char* const taken = bytes_.get() + used_;
        used_ += size;
        return taken;
    }

  private:
    const std::unique_ptr<unsigned char[]> bytes_;
    const std::size_t size_;
    std::size_t used_ = 0;
};

namespace {

/// What stands in front of every node: its chunk, null for a node that stands alone.
struct Header {
    void* chunk;
};

constexpr std::size_t Padded(std::size_t size) noexcept {
    return (size + alignof(Header) - 1) / alignof(Header) * alignof(Header);
}

void* BehindHeader(void* memory, void* chunk) noexcept {
    return new (memory) Header{chunk} + 1;
}

}  // namespace

NodePool::NodePool() noexcept = default;
NodePool::~NodePool() = default;

void* NodePool::Allocate(std::size_t size) {
    const std::size_t needed = sizeof(Header) + Padded(size);
    if (!chunk_ || !chunk_->HasRoomFor(needed)) {
        const std::size_t wanted = std::min(std::max(2 * chunkSize_, kFirstChunk), kLongestChunk);
        chunk_ = new Chunk(std::max(wanted, needed));
        chunkSize_ = wanted;
    }
    boost::intrusive_ptr<Chunk> chunk = chunk_;
    unsigned char* const memory = chunk->Take(needed);
    return BehindHeader(memory, chunk.detach());  // held by the node from now on
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
    const boost::intrusive_ptr<Chunk> chunk(static_cast<Chunk*>(header->chunk), false);
    Poison(node, size);
}

void NodePool::Retire() noexcept {
    chunk_.reset();
    chunkSize_ = 0;
}

}  // namespace Saml::Xml
