#pragma once

/// Lets single functions of OpenSSL fail that never do so by themselves. The program that links
/// this in wraps them: `--wrap` of the linker, once for each.
namespace Saml::RefusingOpenSsl {

enum class Function { DigestUpdate, DigestFinal, SignFinal, StackPush };

/// While it lives, the function fails when this thread calls it.
class Refusal {
  public:
    explicit Refusal(Function function) noexcept;
    ~Refusal();
    Refusal(const Refusal&) = delete;
    Refusal& operator=(const Refusal&) = delete;
};

}  // namespace Saml::RefusingOpenSsl
