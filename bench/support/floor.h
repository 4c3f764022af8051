#pragma once

#include "support/bench_tokens.h"

/// The least that anybody does who verifies a token with expat and OpenSSL: each function is the
/// bare calls of the dependency, with everything else known beforehand. What fails throws
/// `std::runtime_error`.
namespace Bench::Floor {

/// Expat over the whole text, with handlers that do nothing.
void Tokenize(const std::string& xml);
/// SHA-256 of bytes that are there already.
void Digest(const std::string& canonical);
/// Decodes the key and verifies the signature value.
void VerifySignature(const Token& token);
/// Decodes leaf and intermediate, and verifies the chain up to the root, which is decoded already.
void VerifyChain();

/// All that a known key takes.
void KnownKey(const Token& token);
/// All that a chain takes.
void Chain(const Token& token);
/// Digest, decoding of the private key and the private operation.
void Sign(const Token& token);

}  // namespace Bench::Floor
