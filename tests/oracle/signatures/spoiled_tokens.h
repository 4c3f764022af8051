#pragma once

#include "oracle/signatures/matrix_tokens.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace SignatureMatrix {

/// Spoils tokens that were accepted and judges what the library says then: what it accepts must be
/// signed still, byte by byte, in the canonical forms of libxml2.
class SpoilingTrial {
  public:
    enum class Witness { None, XmlSec1 };
    /// Reads the seed of the environment, or takes `usual`.
    SpoilingTrial(std::uint64_t usual, Witness witness);

    /// Spoils `token` in forty ways; a witness is asked about two of them.
    void SpoilAndJudge(const std::string& token, const Cell& cell);

    /// Most spoilings were to be refused, some not, and the witness was asked. Prints all counts.
    void ExpectUsefulCounts() const;

  private:
    struct Verdict {
        bool accepts;
        std::string refusal;  ///< The message.
    };
    Verdict JudgeOurselves(const std::string& xml, const Cell& cell,
                           const ResolverHandle& resolver);
    void CompareWithXmlSec1(const std::string& xml, const Verdict& ours, bool isChanged);

    const std::uint64_t seed_;
    const Witness witness_;
    std::size_t tokens_ = 0;
    std::size_t spoilings_ = 0;
    std::size_t changed_ = 0;  ///< The canonical form is another one, or there is none.
    std::size_t refused_ = 0;
    std::size_t acceptedUnchanged_ = 0;
    std::size_t acceptedChanged_ = 0;
    std::size_t compared_ = 0;
    std::size_t refusedByUsAlone_ = 0;
    std::size_t refusedByXmlSec1Alone_ = 0;
};

}  // namespace SignatureMatrix
