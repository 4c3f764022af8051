#pragma once

#include "oracle/profile/markup_tree.h"
#include "support/test_keys.h"

#include <vector>

/// Signatures over trees of the test's own: canonical forms are written from the tree, digests and
/// RSA are OpenSSL's.
namespace Oracle {

/// Replaces the digests and the signature value of a document that the grammar accepts. What stands
/// between their characters stays; a value of another length is left alone.
void SignAfresh(Markup& document, const Saml::TestKeys::Key& key);

/// Who is believed: the one whose certificate this is, through the resolver of a trusted set.
struct Trust {
    const Saml::TestKeys::Certificate* trusted;
    std::vector<const Saml::TestKeys::Certificate*> known;  ///< Nothing else parses.
};

/// Said of a digest or a signature value that does not fit.
constexpr char kTampered[] = "Failed to verify signature: token might have been tampered with.";

/// Verifies the signature of an assertion that the grammar accepts.
/// \throws Refusal
void ExpectSignature(const Markup& assertion, const Trust& trust);

}  // namespace Oracle
