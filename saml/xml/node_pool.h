#pragma once

#include <cstddef>
#include <memory>

namespace Saml::Xml {

/// Memory for the nodes of one document, which come in their thousands and mostly go together: it
/// is taken in long chunks, in which a node costs an addition, and its neighbours in the document
/// are its neighbours in memory.
///
/// A chunk lives as long as any node in it. So whoever keeps a single node of a document keeps some
/// others' memory too, 64 KiB at most.
/// Threads: nodes may be freed by any thread; a pool is used by one.
class NodePool {
  public:
    NodePool() noexcept;
    ~NodePool();
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;

    /// Memory for one node, to be given to `Free`.
    void* Allocate(std::size_t size);
    /// The same for a node that stands in no pool.
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
    std::size_t chunkSize_ = 0;
};

}  // namespace Saml::Xml
