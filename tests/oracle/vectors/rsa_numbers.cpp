#include "oracle/vectors/rsa_numbers.h"

#include "saml/security/openssl_handles.h"
#include "support/forged_certificate.h"
#include "support/test_keys.h"

#include <openssl/bn.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace Saml::RsaNumbers {
namespace {

using TestKeys::DerValue;
using Xml::Security::FreeWith;
using NumberHandle = std::unique_ptr<BIGNUM, FreeWith<BN_free>>;
using ScratchHandle = std::unique_ptr<BN_CTX, FreeWith<BN_CTX_free>>;

constexpr unsigned char kInteger = 0x02;
constexpr unsigned char kSequence = 0x30;

/// An INTEGER that is not negative: as few bytes as possible, the first bit zero (X.690, 8.3).
std::string DerInteger(const Number& number) {
    const auto first =
        std::find_if(number.begin(), number.end(), [](unsigned char byte) { return byte != 0; });
    std::string content(first, number.end());
    if (content.empty() || (static_cast<unsigned char>(content.front()) & 0x80U) != 0)
        content.insert(0, 1, '\0');
    return DerValue(kInteger, content);
}

NumberHandle FromBytes(const Number& number) {
    return NumberHandle(BN_bin2bn(number.data(), static_cast<int>(number.size()), nullptr));
}

NumberHandle NewNumber() {
    return NumberHandle(BN_new());
}

Number ToBytes(const BIGNUM& number) {
    Number bytes(static_cast<std::size_t>(BN_num_bytes(&number)));
    BN_bn2bin(&number, bytes.data());
    return bytes;
}

/// A prime of the modulus found with this base; null when the base does not lead to one. `odd` is
/// the odd factor of e * d - 1.
NumberHandle PrimeFoundWith(BN_ULONG base, const BIGNUM& odd, const BIGNUM& modulus,
                            BN_CTX* scratch) {
    const NumberHandle last = NewNumber();  // modulus - 1
    BN_copy(last.get(), &modulus);
    BN_sub_word(last.get(), 1);

    NumberHandle root = NewNumber();
    BN_set_word(root.get(), base);
    BN_mod_exp(root.get(), root.get(), &odd, &modulus, scratch);
    if (BN_is_one(root.get()) != 0) return nullptr;
    while (BN_cmp(root.get(), last.get()) != 0) {
        NumberHandle square = NewNumber();
        BN_mod_sqr(square.get(), root.get(), &modulus, scratch);
        if (BN_is_one(square.get()) != 0) {  // root is a square root of 1 beside 1 and -1
            BN_sub_word(root.get(), 1);
            BN_gcd(root.get(), root.get(), &modulus, scratch);
            return root;
        }
        root.swap(square);
    }
    return nullptr;
}

}  // namespace

ByteBlob PublicKeyDer(const Number& modulus, const Number& exponent) {
    return TestKeys::ToBlob(DerValue(kSequence, DerInteger(modulus) + DerInteger(exponent)));
}

ByteBlob PrivateKeyDer(const PrivateKey& key) {
    std::string content = DerInteger({});  // the version: two primes
    for (const Number* const number :
         {&key.modulus, &key.publicExponent, &key.privateExponent, &key.prime1, &key.prime2,
          &key.exponent1, &key.exponent2, &key.coefficient})
        content += DerInteger(*number);
    return TestKeys::ToBlob(DerValue(kSequence, content));
}

PrivateKey Completed(const Number& modulus, const Number& publicExponent,
                     const Number& privateExponent) {
    const ScratchHandle scratch(BN_CTX_new());
    const NumberHandle n = FromBytes(modulus);
    const NumberHandle d = FromBytes(privateExponent);
    const NumberHandle odd = NewNumber();
    BN_mul(odd.get(), FromBytes(publicExponent).get(), d.get(), scratch.get());
    BN_sub_word(odd.get(), 1);
    while (BN_is_zero(odd.get()) == 0 && BN_is_odd(odd.get()) == 0)
        BN_rshift1(odd.get(), odd.get());

    NumberHandle p;
    // Each base fails with a probability of one half at most.
    for (BN_ULONG base = 2; !p && base < 100; ++base)
        p = PrimeFoundWith(base, *odd, *n, scratch.get());
    if (!p) throw std::runtime_error("no primes found");
    const NumberHandle q = NewNumber();
    BN_div(q.get(), nullptr, n.get(), p.get(), scratch.get());

    PrivateKey key{modulus, publicExponent, privateExponent, ToBytes(*p), ToBytes(*q), {}, {}, {}};
    const NumberHandle result = NewNumber();
    BN_mod_inverse(result.get(), q.get(), p.get(), scratch.get());
    key.coefficient = ToBytes(*result);
    BN_sub_word(p.get(), 1);
    BN_sub_word(q.get(), 1);
    BN_mod(result.get(), d.get(), p.get(), scratch.get());
    key.exponent1 = ToBytes(*result);
    BN_mod(result.get(), d.get(), q.get(), scratch.get());
    key.exponent2 = ToBytes(*result);
    return key;
}

}  // namespace Saml::RsaNumbers
