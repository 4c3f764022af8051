#pragma once

#include <cstddef>
#include <memory>

namespace Saml::Xml {

/// Memory for the nodes of one document, with their attributes and names, which come in their
/// thousands and mostly go together: it is taken in long chunks, in which a node costs an addition,
/// and its neighbours in the document are its neighbours in memory.
///
/// A chunk lives as long as anything in it. So whoever keeps a single node of a document keeps some
/// others' memory too: 64 KiB at most for each of the node, its name and its attributes.
/// Threads: what is in a pool may be freed by any thread; the pool is used by one.
class NodePool {
  public:
    static constexpr std::size_t kAlignment = alignof(void*);

    NodePool() noexcept;
    ~NodePool();
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;

    /// Memory for one piece, to be given to `Free`.
    void* Allocate(std::size_t size);
    /// The same for a piece that stands in no pool.
    static void* AllocateAlone(std::size_t size);
    /// \param size  As it was allocated with.
    static void Free(void* node, std::size_t size) noexcept;

    /// Lets go of the chunk that is not full yet; the next node begins another.
    void Retire() noexcept;

  private:
    class Chunk;
    struct Leave {
        void operator()(Chunk* chunk) const noexcept;
    };

    std::unique_ptr<Chunk, Leave> chunk_;
    std::size_t taken_ = 0;  ///< All chunks so far, in bytes.
};

/// Base of classes whose objects come from a pool by `new (pool)`, and stand alone by plain `new`.
class Pooled {
  public:
    static void* operator new(std::size_t size) { return NodePool::AllocateAlone(size); }
    static void* operator new(std::size_t size, NodePool& pool) { return pool.Allocate(size); }
    static void operator delete(void* object, std::size_t size) noexcept {
        NodePool::Free(object, size);
    }
    /// After a constructor that threw.
    static void operator delete(void* object, NodePool&) noexcept { NodePool::Free(object, 0); }

  protected:
    ~Pooled() = default;
};

}  // namespace Saml::Xml
