#pragma once

#include "hostile/attacks/attack.h"

#include <string>
#include <vector>

/// Signature wrapping ("On Breaking SAML: Be Whoever You Want to Be", USENIX Security 2012): a
/// signature that the provider made is shown with words that the provider never said.
namespace Saml::Attacks {

/// A genuine token about mallory@corp, taken apart.
struct Genuine {
    Forge::TokenSpec spec;
    std::string token;
    std::string signature;  ///< The `Signature` element.
    std::string original;   ///< The rest of the token: what the digest was made of.
};
/// The one whose reference is by identifier, "#_genuine", and the one whose reference is "".
const Genuine& SignedByIdentifier();
const Genuine& SignedAsRoot();

/// What mallory would like to be: admin@corp, one of the admins, a solution user.
Forge::TokenSpec AdministratorSpec(const std::string& id);

/// An evil assertion with a genuine signature behind its issuer.
std::string WithSignature(Forge::TokenSpec evil, const Genuine& genuine);

/// Of a token whose wrapper has the identifier of the original.
std::string RefusedAsDuplicate();

/// Whether the first signature in the document holds by itself, with the document's root as its
/// root: true shows that nothing but the strictness of the token functions stops the attack.
bool SignatureHoldsByItself(const std::string& token);

/// Who meets the original, or the evil assertion, where it was put.
enum class Met {
    BeforeCoverage,  ///< The readers, before they ask what the signature covers.
    BehindCoverage,  ///< The readers, after that.
    ByTheResolver,   ///< No reader; it is in the tree, where identifiers are searched.
    ByNobody         ///< It is not in the tree.
};

/// One shape of wrapping, written for an evil assertion and a genuine token.
struct Shape {
    std::string name;
    std::string (*write)(const Shape& shape, const Forge::TokenSpec& evil, const Genuine& genuine);
    Met met;
    std::string refusal = {};  ///< The outcome when a reader meets it.
    /// Whether, the evil assertion having another identifier, the signature holds by itself.
    bool holdsByItself = false;
    bool evilIsRoot = true;
    // For shapes that hide the original in the evil assertion: `from` becomes `to`, in which "|"
    // stands for the original.
    std::string from = {};
    std::string to = {};
};

/// Tries the shape with an evil assertion that has the identifier of the original, another one and
/// none, for both forms of reference.
std::vector<Attack> InEveryGuise(const Shape& shape);

}  // namespace Saml::Attacks
