#include "saml/xml/node_pool.h"

#include "saml/xml/content_nodes_impl.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace Saml::Xml {
namespace {

/// Memory of one node, returned at the end.
class Piece {
  public:
    Piece(NodePool& pool, std::size_t size) : size_(size), memory_(pool.Allocate(size)) {}
    explicit Piece(std::size_t size) : size_(size), memory_(NodePool::AllocateAlone(size)) {}
    Piece(Piece&& other) noexcept : size_(other.size_), memory_(other.memory_) {
        other.memory_ = nullptr;
    }
    Piece& operator=(Piece&&) = delete;
    ~Piece() {
        if (memory_ != nullptr) NodePool::Free(memory_, size_);
    }

    void Fill(unsigned char byte) { std::memset(memory_, byte, size_); }
    bool IsFilledWith(unsigned char byte) const {
        const auto* const bytes = static_cast<const unsigned char*>(memory_);
        for (std::size_t i = 0; i != size_; ++i)
            if (bytes[i] != byte) return false;
        return true;
    }
    std::uintptr_t Address() const { return reinterpret_cast<std::uintptr_t>(memory_); }

  private:
    std::size_t size_;
    void* memory_;
};

TEST(NodePool, GivesPiecesThatDoNotOverlap) {
    NodePool pool;
    std::vector<Piece> pieces;
    for (std::size_t size = 1; size != 600; ++size) {
        pieces.emplace_back(pool, size);
        EXPECT_EQ(pieces.back().Address() % alignof(TextNodeImpl), 0U);
        pieces.back().Fill(static_cast<unsigned char>(size));
    }
    for (std::size_t size = 1; size != 600; ++size)
        EXPECT_TRUE(pieces[size - 1].IsFilledWith(static_cast<unsigned char>(size))) << size;
}

TEST(NodePool, GivesPiecesThatAreLongerThanItsChunks) {
    NodePool pool;
    Piece small(pool, 100);
    Piece large(pool, 1000000);
    Piece next(pool, 100);
    small.Fill(1);
    large.Fill(2);
    next.Fill(3);
    EXPECT_TRUE(small.IsFilledWith(1) && large.IsFilledWith(2) && next.IsFilledWith(3));
}

TEST(NodePool, MayGoBeforeItsPieces) {
    std::vector<Piece> pieces;
    {
        NodePool pool;
        for (int i = 0; i != 1000; ++i)
            pieces.emplace_back(pool, 100);
    }
    for (Piece& piece : pieces)
        piece.Fill(7);
    EXPECT_TRUE(pieces.front().IsFilledWith(7));
}

TEST(NodePool, PutsOneBehindTheOther) {
    NodePool pool;
    const Piece first(pool, 100);
    const Piece second(pool, 100);
    EXPECT_GT(second.Address(), first.Address());
    EXPECT_LT(second.Address(), first.Address() + 200);
}

// Else a document of long attributes between short nodes would take twice its size.
TEST(NodePool, IsNotLeftHalfEmptyForALongPiece) {
    NodePool pool;
    const Piece first(pool, 100);
    const Piece large(pool, 60000);
    const Piece second(pool, 100);
    EXPECT_GT(second.Address(), first.Address());
    EXPECT_LT(second.Address(), first.Address() + 200);
}

TEST(NodePool, BeginsAnewOnceItIsRetired) {
    NodePool pool;
    std::vector<Piece> pieces;
    pieces.emplace_back(pool, 100);
    pool.Retire();
    pool.Retire();
    pieces.emplace_back(pool, 100);
    pieces.emplace_back(100);
    for (Piece& piece : pieces)
        piece.Fill(9);
    EXPECT_TRUE(pieces.front().IsFilledWith(9));
}

TEST(NodesOfADocument, OutliveItsParserAndItsOtherNodes) {
    std::vector<Held<Node>> kept;
    for (int turn = 0; turn != 3; ++turn) {
        std::string text = "<a>";
        for (int i = 0; i != 2000; ++i)
            text += "<b x='1'>text " + std::to_string(i) + "</b>";
        const Held<Document> document = Parsed(text + "</a>");
        const Held<Node> child(document->GetRootElement()->GetLastChild());
        document->GetRootElement()->RemoveChild(child.get());
        kept.push_back(child);
    }
    for (const Held<Node>& node : kept)
        EXPECT_EQ(Outline(*node), "b[x=1]{\"text 1999\"}");
}

TEST(NodesOfADocument, MayBeFreedByManyThreads) {
    const Held<Document> document = Parsed("<a>" + [] {
        std::string text;
        for (int i = 0; i != 8000; ++i)
            text += "<b>text</b>";
        return text;
    }() + "</a>");
    std::vector<std::vector<Held<Node>>> shares(8);
    ElementNode* const root = document->GetRootElement();
    for (std::size_t i = 0; Node* const child = root->GetFirstChild(); ++i) {
        shares[i % shares.size()].emplace_back(child);
        root->RemoveChild(child);
    }
    std::vector<std::thread> threads;
    for (std::vector<Held<Node>>& share : shares)
        threads.emplace_back([&share] { share.clear(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(root->GetFirstChild(), nullptr);
}

TEST(NamesOfElements, ChangeForOneElementOnly) {
    const Held<Document> document = Parsed("<a><p:b/><p:b/><p:c/></a>");
    const std::vector<Node*> children = ChildrenOf(*document->GetRootElement());
    auto& first = dynamic_cast<ElementNode&>(*children[0]);
    first.SetPrefix("q");
    EXPECT_EQ(Outline(*document), "#document{a{q:b p:b p:c}}");
    first.SetLocalName("d");
    EXPECT_EQ(Outline(*document), "#document{a{q:d p:b p:c}}");
    auto& second = dynamic_cast<ElementNode&>(*children[1]);
    second.SetLocalName(second.GetPrefix());
    second.SetPrefix(first.GetLocalName());
    EXPECT_EQ(Outline(*document), "#document{a{q:d d:p p:c}}");
}

TEST(NamesOfElements, AreToldApartHoweverAlikeTheyAre) {
    // Names of one length with one last letter follow each other closely.
    const std::string text = "<a><xb/><yb/><xb/><y:b/><x:b/><yb/><:xb/><xb:/></a>";
    EXPECT_EQ(Outline(*Parsed(text)), "#document{a{xb yb xb y:b x:b yb xb xb:}}");
}

}  // namespace
}  // namespace Saml::Xml
