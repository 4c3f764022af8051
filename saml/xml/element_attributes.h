#pragma once

#include "saml/xml/attribute.h"
#include "saml/xml/node_pool.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Saml::Xml {

/// The attributes of an element, in the byte order of their names.
///
/// As a parser reports them they are one block: the entries side by side, their texts behind them.
/// The first change copies them to a map, so that whoever sets 100,000 of them one by one does not
/// wait. Most elements have none, and most of the others are never changed.
///
/// Views of what was reported hold for as long as the element: its block goes with it. Those of
/// what was set, and of an iterator among them, hold until it is overwritten or removed.
class ElementAttributes {
    using Map = std::map<std::string, std::string, std::less<>>;

  public:
    class Iterator {
      public:
        Attribute operator*() const noexcept {
            return listed_ != nullptr ? *listed_ : Attribute{mapped_->first, mapped_->second};
        }
        Iterator& operator++() noexcept {
            if (listed_ != nullptr)
                ++listed_;
            else
                ++mapped_;
            return *this;
        }
        bool operator!=(const Iterator& other) const noexcept {
            return listed_ != other.listed_ || mapped_ != other.mapped_;
        }

      private:
        friend class ElementAttributes;
        Iterator() noexcept = default;
        explicit Iterator(const Attribute* listed) noexcept : listed_(listed) {}
        explicit Iterator(Map::const_iterator mapped) noexcept : mapped_(mapped) {}

        const Attribute* listed_ = nullptr;
        Map::const_iterator mapped_;
    };

    /// Gives an empty list what was reported, in any order; copied into `pool`. Of several with the
    /// same name the last one counts.
    /// \param reported  Is sorted, and loses those that do not count.
    /// \throws std::bad_alloc
    void Fill(std::vector<Attribute>& reported, NodePool& pool);
    /// Adds one or replaces its value.
    /// \throws std::bad_alloc  Nothing is changed then.
    void Set(std::string name, std::string value);
    /// \return False when there is none with this name.
    /// \throws std::bad_alloc  By the first change only. Nothing is changed then.
    bool Remove(const std::string& name);

    FoundText Find(std::string_view name) const noexcept {
        return block_ ? Search(name) : std::nullopt;
    }

    bool IsEmpty() const noexcept { return !block_ || block_->IsEmpty(); }
    Iterator begin() const noexcept { return block_ ? Begin() : Iterator(); }
    Iterator end() const noexcept { return block_ ? End() : Iterator(); }

  private:
    struct Block {
        std::size_t size;          ///< In bytes, with the entries and their texts.
        std::size_t count;         ///< Of the entries.
        std::unique_ptr<Map> map;  ///< What counts instead of the entries since the first change.

        bool IsEmpty() const noexcept { return map ? map->empty() : count == 0; }
        Attribute* Entries() noexcept { return static_cast<Attribute*>(Behind()); }
        void* Behind() noexcept { return this + 1; }
    };
    struct FreeBlock {
        void operator()(Block* block) const noexcept;
    };
    using BlockPtr = std::unique_ptr<Block, FreeBlock>;

    static BlockPtr MakeBlock(const std::vector<Attribute>& sorted, NodePool& pool);
    FoundText Search(std::string_view name) const noexcept;
    Iterator Begin() const noexcept;
    Iterator End() const noexcept;
    Map& Changeable();

    BlockPtr block_;  ///< Null while there are none.
};

}  // namespace Saml::Xml
