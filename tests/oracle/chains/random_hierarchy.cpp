#include "oracle/chains/random_hierarchy.h"

#include "support/dice.h"

#include <algorithm>
#include <utility>

namespace Chains {
namespace {

/// Keys of the pool: the path's stand at the places of its levels.
constexpr std::size_t kMostLevels = 5;
constexpr std::size_t kForgersKey = 5;
constexpr std::size_t kNamesakesKey = 6;
constexpr std::size_t kOtherRootsKey = 7;
constexpr std::size_t kUnrelatedKey = 8;
constexpr std::size_t kClonesKey = 9;
static_assert(kClonesKey < kPoolSize);

Description SelfSigned(const std::string& name, std::size_t key) {
    Description root;
    root.subject = root.issuer = name;
    root.key = root.signingKey = key;
    root.constraints = Constraints::Authority;
    root.usage = Usage::CertSign;
    root.identifiesKey = true;
    return root;
}

/// Makes `issuer` the issuer of `certificate`.
void IssueBy(const Description& issuer, Description& certificate) {
    certificate.issuer = issuer.subject;
    certificate.signingKey = issuer.key;
    certificate.identifiedIssuer.reset();
    if (issuer.identifiesKey) certificate.identifiedIssuer = issuer.key;
}

/// A path with nothing wrong in it; a signer alone signs itself.
std::vector<Description> SoundPath(std::size_t levels, Dice& dice) {
    std::vector<Description> path;
    const bool hasIdentifiers = dice.Chance(60);
    for (std::size_t level = 0; level < levels; ++level) {
        const bool isSigner = level + 1 == levels;
        Description next =
            SelfSigned(isSigner ? "Signer" : "Authority " + std::to_string(level), level);
        next.identifiesKey = hasIdentifiers;
        if (level > 0) IssueBy(path.back(), next);
        if (isSigner && dice.Chance(80)) {
            next.constraints = dice.Chance(50) ? Constraints::NoAuthority : Constraints::Absent;
            next.usage = dice.Chance(50) ? Usage::Signature : Usage::Absent;
        } else if (dice.Chance(25)) {
            next.usage = Usage::Absent;
        }
        path.push_back(std::move(next));
    }
    return path;
}

/// One thing that a path may have; false when it is too short for it.
struct Variation {
    const char* name;
    bool (*apply)(std::vector<Description>& path, Dice& dice);
};

/// Applies `change` to any certificate of the path but the last `spared` ones.
template <class Change>
bool ChangeAny(std::vector<Description>& path, Dice& dice, std::size_t spared, Change change) {
    if (path.size() <= spared) return false;
    change(path[dice.Below(path.size() - spared)]);
    return true;
}

/// `difference` to the number of intermediates that really stand below an authority.
bool LimitPath(std::vector<Description>& path, Dice& dice, int difference) {
    if (path.size() < (difference < 0 ? 3U : 2U)) return false;
    const std::size_t most = path.size() - 2;  // below the root
    const std::size_t level = dice.Below(difference < 0 ? most : most + 1);
    path[level].constraints = Constraints::Authority;
    path[level].pathLength = static_cast<int>(most - level) + difference;
    return true;
}

bool Forge(std::vector<Description>& path, Dice& dice, bool copiesIdentifier) {
    if (path.size() < 2) return false;
    const std::size_t level = 1 + dice.Below(path.size() - 1);
    path[level].signingKey = kForgersKey;
    path[level].identifiedIssuer.reset();
    if (copiesIdentifier) {
        path[level - 1].identifiesKey = true;
        path[level].identifiedIssuer = path[level - 1].key;
    }
    return true;
}

constexpr Variation kVariations[] = {
    {"expired",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 0, [](auto& one) { one.validity = Validity::Expired; });
     }},
    {"not yet valid",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 0, [](auto& one) { one.validity = Validity::NotYetValid; });
     }},
    {"issuer is no authority",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 1,
                          [](auto& one) { one.constraints = Constraints::NoAuthority; });
     }},
    {"issuer without basicConstraints",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 1, [](auto& one) { one.constraints = Constraints::Absent; });
     }},
    {"issuer without keyCertSign",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 1, [](auto& one) { one.usage = Usage::Signature; });
     }},
    {"path length kept", [](auto& path, auto& dice) { return LimitPath(path, dice, 0); }},
    {"path length broken", [](auto& path, auto& dice) { return LimitPath(path, dice, -1); }},
    {"signed by another key", [](auto& path, auto& dice) { return Forge(path, dice, false); }},
    {"signed by another key, identifier copied",
     [](auto& path, auto& dice) { return Forge(path, dice, true); }},
    {"version 1",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 0, [](auto& one) { one.isVersion1 = true; });
     }},
    {"unknown critical extension",
     [](auto& path, auto& dice) {
         return ChangeAny(path, dice, 0, [](auto& one) { one.hasUnknownCriticalExtension = true; });
     }},
};

/// Certificates beside the path.
struct Addition {
    const char* name;
    std::size_t percent;  ///< How often.
    bool needsAuthority;  ///< Has to do with an authority of the path, the one at `level`.
    void (*make)(const std::vector<Description>& path, std::size_t level, Dice& dice,
                 std::vector<Description>& out);
};

constexpr Addition kAdditions[] = {
    {"namesake of an authority", 25, true,
     [](auto& path, auto level, auto& dice, auto& out) {
         Description namesake = SelfSigned(path[level].subject, kNamesakesKey);
         namesake.identifiesKey = path[level].identifiesKey;
         if (level > 0 && dice.Chance(50)) IssueBy(path[level - 1], namesake);
         out.push_back(namesake);
     }},
    {"expired twin of an authority", 25, true,
     [](auto& path, auto level, auto&, auto& out) {
         out.push_back(path[level]);
         out.back().validity = Validity::Expired;
     }},
    {"twin of an authority that is none", 40, true,
     [](auto& path, auto level, auto&, auto& out) {
         out.push_back(path[level]);
         out.back().constraints = Constraints::NoAuthority;
     }},
    {"authority certified by another root", 25, true,
     [](auto& path, auto level, auto&, auto& out) {
         const Description root = SelfSigned("Other Root", kOtherRootsKey);
         out.push_back(root);
         out.push_back(path[level]);
         IssueBy(root, out.back());
     }},
    {"unrelated authority and leaf", 25, false,
     [](auto&, auto, auto&, auto& out) {
         const Description root = SelfSigned("Unrelated", kUnrelatedKey);
         Description leaf = SelfSigned("Unrelated Leaf", kUnrelatedKey);
         leaf.constraints = Constraints::NoAuthority;
         IssueBy(root, leaf);
         out.push_back(root);
         out.push_back(leaf);
     }},
    {"clone of the signer with another key", 25, false,
     [](auto& path, auto, auto&, auto& out) {
         Description clone = SelfSigned("Signer", kClonesKey);
         clone.constraints = Constraints::NoAuthority;
         if (path.size() > 1) IssueBy(path[path.size() - 2], clone);
         out.push_back(clone);
     }},
};

/// The level of an authority above the signer, mostly below the root: twins and namesakes of those
/// stand in the way of chain building, since such authorities come from the sender. 0 for a signer
/// without any.
std::size_t AnyAuthority(std::size_t signer, Dice& dice) {
    if (signer > 1 && dice.Chance(75)) return 1 + dice.Below(signer - 1);
    return signer == 0 ? 0 : dice.Below(signer);
}

void DrawAdditions(Dice& dice, Hierarchy& hierarchy) {
    const std::vector<Description> path = hierarchy.certificates;
    for (const Addition& addition : kAdditions) {
        if (!dice.Chance(addition.percent) || (addition.needsAuthority && path.size() < 2))
            continue;
        addition.make(path, AnyAuthority(hierarchy.signer, dice), dice, hierarchy.certificates);
        hierarchy.features.insert(addition.name);
    }
}

void DrawTrusted(Dice& dice, Hierarchy& hierarchy) {
    const std::size_t all = hierarchy.certificates.size();
    const std::size_t signer = hierarchy.signer;
    const std::size_t way = dice.Below(100);
    std::size_t first = 0;  // the root
    if (way >= 85 && all > signer + 1)
        first = signer + 1 + dice.Below(all - signer - 1);
    else if (way >= 65)
        first = signer;
    else if (way >= 40 && signer > 1)
        first = 1 + dice.Below(signer - 1);
    hierarchy.trusted.push_back(first);
    while (dice.Chance(25))  // a repeated one may come of it
        hierarchy.trusted.insert(hierarchy.trusted.begin() + static_cast<std::ptrdiff_t>(dice.Below(
                                                                 hierarchy.trusted.size() + 1)),
                                 dice.Below(all));
}

void DrawSent(Dice& dice, Hierarchy& hierarchy) {
    std::vector<std::size_t> path;
    for (std::size_t level = hierarchy.signer; level-- > 0;)
        if (dice.Chance(level == 0 ? 50 : 92)) path.push_back(level);
    std::vector<std::size_t> others;
    for (std::size_t i = hierarchy.signer + 1; i < hierarchy.certificates.size(); ++i)
        if (dice.Chance(75)) others.push_back(i);
    if (dice.Chance(5)) others.push_back(hierarchy.signer);

    std::vector<std::size_t> sent = path;
    const bool othersFirst = dice.Chance(40);
    sent.insert(othersFirst ? sent.begin() : sent.end(), others.begin(), others.end());
    if (dice.Chance(50)) {
        dice.Shuffle(sent);
        if (sent.size() > 1) hierarchy.features.insert("order shuffled");
    }
    hierarchy.sent.push_back(hierarchy.signer);
    hierarchy.sent.insert(hierarchy.sent.end(), sent.begin(), sent.end());
}

bool Holds(const std::vector<std::size_t>& list, std::size_t place) {
    return std::find(list.begin(), list.end(), place) != list.end();
}

/// What the lists turned out to be.
struct Trait {
    const char* name;
    bool (*holds)(const Hierarchy& hierarchy);
};

constexpr Trait kTraits[] = {
    {"1 level", [](const Hierarchy& h) { return h.signer == 0; }},
    {"2 levels", [](const Hierarchy& h) { return h.signer == 1; }},
    {"3 levels", [](const Hierarchy& h) { return h.signer == 2; }},
    {"4 levels", [](const Hierarchy& h) { return h.signer == 3; }},
    {"5 levels", [](const Hierarchy& h) { return h.signer == 4; }},
    {"root trusted", [](const Hierarchy& h) { return h.signer > 0 && Holds(h.trusted, 0); }},
    {"intermediate trusted",
     [](const Hierarchy& h) {
         return std::any_of(h.trusted.begin(), h.trusted.end(),
                            [&h](std::size_t place) { return place > 0 && place < h.signer; });
     }},
    {"issued signer trusted",
     [](const Hierarchy& h) { return h.signer > 0 && Holds(h.trusted, h.signer); }},
    {"self-signed signer trusted",
     [](const Hierarchy& h) { return h.signer == 0 && Holds(h.trusted, h.signer); }},
    {"nothing of the path trusted",
     [](const Hierarchy& h) {
         return std::all_of(h.trusted.begin(), h.trusted.end(),
                            [&h](std::size_t place) { return place > h.signer; });
     }},
    {"several trusted", [](const Hierarchy& h) { return h.trusted.size() > 1; }},
    {"intermediate missing",
     [](const Hierarchy& h) {
         for (std::size_t level = 1; level < h.signer; ++level)
             if (!Holds(h.sent, level) && !Holds(h.trusted, level)) return true;
         return false;
     }},
    {"more sent than the path",
     [](const Hierarchy& h) {
         return std::any_of(h.sent.begin(), h.sent.end(),
                            [&h](std::size_t place) { return place > h.signer; });
     }},
};

void AppendPlaces(const char* title, const std::vector<std::size_t>& places, std::string& out) {
    out += title;
    for (const std::size_t place : places)
        out += " " + std::to_string(place);
    out += "\n";
}

}  // namespace

Hierarchy RandomHierarchy(std::uint64_t seed, std::uint64_t index) {
    Dice dice(seed, {index});
    Hierarchy hierarchy;
    const std::size_t levels = dice.Chance(8) ? 1 : 2 + dice.Below(kMostLevels - 1);
    hierarchy.certificates = SoundPath(levels, dice);
    hierarchy.signer = levels - 1;
    for (std::size_t percent = 60; dice.Chance(percent); percent = 20) {
        const Variation& variation = dice.Any(kVariations);
        if (variation.apply(hierarchy.certificates, dice))
            hierarchy.features.insert(variation.name);
    }
    DrawAdditions(dice, hierarchy);
    DrawTrusted(dice, hierarchy);
    DrawSent(dice, hierarchy);
    for (const Trait& trait : kTraits)
        if (trait.holds(hierarchy)) hierarchy.features.insert(trait.name);
    return hierarchy;
}

std::set<std::string> AllFeatures() {
    std::set<std::string> names{"order shuffled"};
    for (const Variation& variation : kVariations)
        names.insert(variation.name);
    for (const Addition& addition : kAdditions)
        names.insert(addition.name);
    for (const Trait& trait : kTraits)
        names.insert(trait.name);
    return names;
}

std::string Summary(const Hierarchy& hierarchy) {
    std::string out;
    for (std::size_t i = 0; i < hierarchy.certificates.size(); ++i)
        out += std::to_string(i) + ": " + Summary(hierarchy.certificates[i]) + "\n";
    AppendPlaces("trusted:", hierarchy.trusted, out);
    AppendPlaces("sent:", hierarchy.sent, out);
    return out;
}

}  // namespace Chains
