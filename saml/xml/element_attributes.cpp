#include "saml/xml/element_attributes.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace Saml::Xml {
namespace {

constexpr std::size_t kLongestBlock = std::numeric_limits<std::ptrdiff_t>::max() / 2;

/// So few are sorted without memory, and told apart by their lengths sooner than by their order.
constexpr std::size_t kFew = 8;

bool ComesBefore(const Attribute& left, const Attribute& right) noexcept {
    return left.name < right.name;
}

void SortByName(std::vector<Attribute>& attributes) {
    if (attributes.size() > kFew) {
        std::stable_sort(attributes.begin(), attributes.end(), ComesBefore);
        return;
    }
    for (auto next = attributes.begin(); next != attributes.end(); ++next)
        std::rotate(std::upper_bound(attributes.begin(), next, *next, ComesBefore), next, next + 1);
}

// A parser reports no name twice; whoever calls a handler may.
void KeepLastOfEachName(std::vector<Attribute>& sorted) {
    auto kept = sorted.begin();
    for (auto next = sorted.begin(); next != sorted.end(); ++next) {
        if (next != sorted.begin() && next->name != kept->name) ++kept;
        *kept = *next;
    }
    sorted.erase(kept + 1, sorted.end());
}

// A parser has them all in memory; whoever calls a handler may give one text many times.
std::size_t SizeOfTexts(const std::vector<Attribute>& attributes) {
    std::size_t total = 0;
    for (const Attribute& attribute : attributes)
        for (const std::string_view text : {attribute.name, attribute.value}) {
            if (text.size() > kLongestBlock - total) throw std::bad_alloc();
            total += text.size();
        }
    return total;
}

std::string_view CopyTo(char*& place, std::string_view text) noexcept {
    const char* const copy = place;
    place = std::copy(text.begin(), text.end(), place);
    return {copy, text.size()};
}

}  // namespace

void ElementAttributes::FreeBlock::operator()(Block* block) const noexcept {
    const std::size_t size = block->size;
    block->~Block();
    NodePool::Free(block, size);
}

ElementAttributes::BlockPtr ElementAttributes::MakeBlock(const std::vector<Attribute>& sorted,
                                                         NodePool& pool) {
    static_assert(alignof(Block) <= NodePool::kAlignment);
    static_assert(sizeof(Block) % alignof(Attribute) == 0);
    const std::size_t texts = SizeOfTexts(sorted);
    if (sorted.size() > (kLongestBlock - texts) / sizeof(Attribute)) throw std::bad_alloc();
    const std::size_t size = sizeof(Block) + sorted.size() * sizeof(Attribute) + texts;
    BlockPtr block(new (pool.Allocate(size)) Block{size, sorted.size(), nullptr});

    Attribute* entry = block->Entries();
    void* const behindEntries = entry + sorted.size();
    char* place = static_cast<char*>(behindEntries);
    for (const Attribute& attribute : sorted) {
        const std::string_view name = CopyTo(place, attribute.name);
        new (entry++) Attribute{name, CopyTo(place, attribute.value)};
    }
    return block;
}

void ElementAttributes::Fill(std::vector<Attribute>& reported, NodePool& pool) {
    if (reported.empty()) return;
    SortByName(reported);
    KeepLastOfEachName(reported);
    block_ = MakeBlock(reported, pool);
}

ElementAttributes::Map& ElementAttributes::Changeable() {
    if (!block_)
        block_.reset(new (NodePool::AllocateAlone(sizeof(Block))) Block{sizeof(Block), 0, nullptr});
    if (!block_->map) {
        auto map = std::make_unique<Map>();
        for (const Attribute& attribute : *this)
            map->emplace_hint(map->end(), attribute.name, attribute.value);
        block_->map = std::move(map);
    }
    return *block_->map;
}

void ElementAttributes::Set(std::string name, std::string value) {
    Map& map = Changeable();
    map.insert_or_assign(map.end(), std::move(name), std::move(value));
}

bool ElementAttributes::Remove(const std::string& name) {
    return Find(name) && Changeable().erase(name) != 0;
}

FoundText ElementAttributes::Search(std::string_view name) const noexcept {
    if (block_->map) {
        const auto found = block_->map->find(name);
        return found != block_->map->end() ? FoundText(found->second) : std::nullopt;
    }
    const Attribute* first = block_->Entries();
    std::size_t count = block_->count;
    while (count > kFew) {
        const std::size_t half = count / 2;
        const bool isBefore = name < first[half].name;
        if (!isBefore) first += half;
        count = isBefore ? half : count - half;
    }
    for (const Attribute* const end = first + count; first != end; ++first)
        if (first->name == name) return first->value;
    return std::nullopt;
}

ElementAttributes::Iterator ElementAttributes::Begin() const noexcept {
    return block_->map ? Iterator(block_->map->cbegin()) : Iterator(block_->Entries());
}

ElementAttributes::Iterator ElementAttributes::End() const noexcept {
    return block_->map ? Iterator(block_->map->cend())
                       : Iterator(block_->Entries() + block_->count);
}

}  // namespace Saml::Xml
