#include "saml/security/namespace_scope.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

const std::string kNone;
const std::string kA = "urn:a";
const std::string kB = "urn:b";
const std::string kAgainA = "urn:a";

std::vector<std::string> PrefixesOf(const NamespaceScope& scope) {
    std::vector<std::string> prefixes;
    scope.ForEachInScope([&](std::string_view prefix) { prefixes.emplace_back(prefix); });
    return prefixes;
}

TEST(NamespaceScope, BindsWhatIsDeclared) {
    NamespaceScope scope;
    scope.Enter();
    EXPECT_EQ(scope.Find("p"), std::nullopt);
    scope.Declare("p", kA);
    scope.Declare("", kB);
    ASSERT_NE(scope.Find("p"), std::nullopt);
    EXPECT_EQ(*scope.Find("p"), "urn:a");
    ASSERT_NE(scope.Find(""), std::nullopt);
    EXPECT_EQ(*scope.Find(""), "urn:b");
    EXPECT_EQ(scope.Find("q"), std::nullopt);
}

TEST(NamespaceScope, TheLastDeclarationHolds) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kA);
    scope.Declare("p", kB);
    EXPECT_EQ(*scope.Find("p"), "urn:b");
}

TEST(NamespaceScope, InheritsTheFirstThatIsNamed) {
    NamespaceScope scope;
    scope.DeclareInherited("p", kA);
    scope.DeclareInherited("p", kB);
    scope.DeclareInherited("q", kB);
    EXPECT_EQ(*scope.Find("p"), "urn:a");
    EXPECT_EQ(*scope.Find("q"), "urn:b");
}

TEST(NamespaceScope, UndoesDeclarationsOnTheWayOut) {
    NamespaceScope scope;
    scope.DeclareInherited("p", kA);
    scope.Enter();
    scope.Declare("p", kB);
    scope.Declare("q", kB);
    scope.Enter();
    scope.Declare("p", kNone);
    EXPECT_EQ(*scope.Find("p"), "");
    scope.Leave();
    EXPECT_EQ(*scope.Find("p"), "urn:b");
    EXPECT_EQ(*scope.Find("q"), "urn:b");
    scope.Leave();
    EXPECT_EQ(*scope.Find("p"), "urn:a");
    EXPECT_EQ(scope.Find("q"), std::nullopt);
}

TEST(NamespaceScope, ListsBoundPrefixesInByteOrder) {
    NamespaceScope scope;
    scope.Enter();
    for (const char* const prefix : {"b", "\xC3\xA9", "a", "", "ab", "B"})
        scope.Declare(prefix, kA);
    EXPECT_EQ(PrefixesOf(scope), (std::vector<std::string>{"", "B", "a", "ab", "b", "\xC3\xA9"}));
    scope.Leave();
    EXPECT_EQ(PrefixesOf(scope), std::vector<std::string>());
}

TEST(NamespaceScopeRendering, NeedsNothingForAnUnboundPrefix) {
    NamespaceScope scope;
    scope.Enter();
    EXPECT_EQ(scope.Render("p"), std::nullopt);
    EXPECT_EQ(scope.Render(""), std::nullopt);
}

TEST(NamespaceScopeRendering, NeedsADeclarationOnceForOneUri) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kA);
    ASSERT_NE(scope.Render("p"), std::nullopt);
    EXPECT_EQ(scope.Render("p"), std::nullopt);
    scope.Enter();
    EXPECT_EQ(scope.Render("p"), std::nullopt);
    // The texts decide, not where they stand.
    scope.Declare("p", kAgainA);
    EXPECT_EQ(scope.Render("p"), std::nullopt);
    scope.Declare("p", kB);
    ASSERT_NE(scope.Render("p"), std::nullopt);
    EXPECT_EQ(scope.Render("p"), std::nullopt);
}

TEST(NamespaceScopeRendering, GivesTheUriInScope) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kA);
    scope.Declare("p", kB);
    const FoundText uri = scope.Render("p");
    ASSERT_NE(uri, std::nullopt);
    EXPECT_EQ(*uri, "urn:b");
}

TEST(NamespaceScopeRendering, IsForgottenOnTheWayOut) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kA);
    scope.Enter();
    EXPECT_NE(scope.Render("p"), std::nullopt);
    scope.Leave();
    scope.Enter();
    EXPECT_NE(scope.Render("p"), std::nullopt);
    scope.Leave();
    EXPECT_NE(scope.Render("p"), std::nullopt);
}

TEST(NamespaceScopeRendering, ReturnsToTheOuterUriOnTheWayOut) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kA);
    EXPECT_NE(scope.Render("p"), std::nullopt);
    scope.Enter();
    scope.Declare("p", kB);
    EXPECT_NE(scope.Render("p"), std::nullopt);
    scope.Leave();
    EXPECT_EQ(scope.Render("p"), std::nullopt);
}

TEST(NamespaceScopeRendering, UndeclaresADefaultOnlyWhereOneWasRendered) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("", kNone);
    EXPECT_EQ(scope.Render(""), std::nullopt);
    scope.Enter();
    scope.Declare("", kA);
    EXPECT_NE(scope.Render(""), std::nullopt);
    scope.Enter();
    scope.Declare("", kNone);
    const FoundText undeclared = scope.Render("");
    ASSERT_NE(undeclared, std::nullopt);
    EXPECT_EQ(*undeclared, "");
    EXPECT_EQ(scope.Render(""), std::nullopt);
}

TEST(NamespaceScopeRendering, DeclaresAPrefixWithAnEmptyUri) {
    NamespaceScope scope;
    scope.Enter();
    scope.Declare("p", kNone);
    const FoundText uri = scope.Render("p");
    ASSERT_NE(uri, std::nullopt);
    EXPECT_EQ(*uri, "");
    EXPECT_EQ(scope.Render("p"), std::nullopt);
}

/// The state of one element with maps of its own, which its children copy.
struct CopiedState {
    std::map<std::string, std::string> inScope;
    std::map<std::string, std::string> rendered;

    FoundText Find(const std::string& prefix) const {
        const auto found = inScope.find(prefix);
        return found != inScope.end() ? FoundText(found->second) : std::nullopt;
    }
    FoundText Render(const std::string& prefix) {
        const FoundText uri = Find(prefix);
        if (!uri) return std::nullopt;
        const auto known = rendered.find(prefix);
        if (known != rendered.end() && known->second == *uri) return std::nullopt;
        if (prefix.empty() && uri->empty() && known == rendered.end()) return std::nullopt;
        rendered[prefix] = *uri;
        return uri;
    }
};

/// A scope next to its model, taken through the same random steps.
class RandomSteps {
  public:
    explicit RandomSteps(unsigned seed) : random_(seed) {}

    void Take() {
        const std::string& prefix = Pick(kPrefixes);
        const std::string& uri = Pick(kUris);
        const bool inside = path_.size() > 1;
        const auto choice = random_() % 6;
        if (choice == 0) Enter();
        if (choice == 1 && inside) Leave();
        if (choice == 2 && inside) Declare(prefix, uri);
        if (choice == 2 && !inside) DeclareInherited(prefix, uri);
        if (choice > 2 && inside) {
            EXPECT_EQ(scope_.Render(prefix), path_.back().Render(prefix));
        }
        EXPECT_EQ(scope_.Find(prefix), path_.back().Find(prefix));
        EXPECT_EQ(PrefixesOf(scope_).size(), path_.back().inScope.size());
    }

  private:
    inline static const std::vector<std::string> kPrefixes = {"", "p", "q", "pq"};
    inline static const std::vector<std::string> kUris = {"", "urn:a", "urn:b", "urn:a"};

    const std::string& Pick(const std::vector<std::string>& from) {
        return from[random_() % from.size()];
    }
    void Enter() {
        scope_.Enter();
        path_.push_back(path_.back());
    }
    void Leave() {
        scope_.Leave();
        path_.pop_back();
    }
    void Declare(const std::string& prefix, const std::string& uri) {
        scope_.Declare(prefix, uri);
        path_.back().inScope[prefix] = uri;
    }
    void DeclareInherited(const std::string& prefix, const std::string& uri) {
        scope_.DeclareInherited(prefix, uri);
        path_.back().inScope.emplace(prefix, uri);
    }

    std::mt19937 random_;
    NamespaceScope scope_;
    std::vector<CopiedState> path_{1};
};

TEST(NamespaceScope, BehavesLikeMapsCopiedForEachElement) {
    for (unsigned seed = 0; seed != 200; ++seed) {
        SCOPED_TRACE(seed);
        RandomSteps steps(seed);
        for (int step = 0; step != 200 && !testing::Test::HasFailure(); ++step)
            steps.Take();
    }
}

}  // namespace
}  // namespace Saml::Xml::Security
