#include "hostile/attacks/raw_rsa.h"

#include "saml/security/openssl_handles.h"
#include "support/test_keys.h"

#include <openssl/bn.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace Saml::Attacks::RawRsa {
namespace {

using Xml::Security::FreeWith;
using Xml::Security::KeyHandle;
using Number = std::unique_ptr<BIGNUM, FreeWith<BN_free>>;
using Scratch = std::unique_ptr<BN_CTX, FreeWith<BN_CTX_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, FreeWith<EVP_PKEY_CTX_free>>;

void Check(int result, const char* step) {
    if (result != 1) throw std::runtime_error(step);
}

Number FromBytes(const std::string& bytes) {
    return Number(BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.data()),
                            static_cast<int>(bytes.size()), nullptr));
}

std::string ToBytes(const BIGNUM& number, std::size_t size) {
    std::string bytes(std::max(size, static_cast<std::size_t>(BN_num_bytes(&number))), '\0');
    BN_bn2binpad(&number, reinterpret_cast<unsigned char*>(bytes.data()),
                 static_cast<int>(bytes.size()));
    return bytes;
}

KeyHandle Read(const std::string& key) {
    const ByteBlob der = TestKeys::KeyNamed(key).privateKey;
    const unsigned char* input = der->data();
    return KeyHandle(d2i_AutoPrivateKey(nullptr, &input, static_cast<long>(der->size())));
}

#if OPENSSL_VERSION_NUMBER >= 0x30000000L
Number Parameter(EVP_PKEY& key, const char* name) {
    BIGNUM* number = nullptr;
    Check(EVP_PKEY_get_bn_param(&key, name, &number), "the key has no such number");
    return Number(number);
}
#else
Number Parameter(EVP_PKEY& key, const char* name) {
    const RSA* const rsa = EVP_PKEY_get0_RSA(&key);
    const BIGNUM* const number = *name == 'n'   ? RSA_get0_n(rsa)
                                 : *name == 'e' ? RSA_get0_e(rsa)
                                                : RSA_get0_d(rsa);
    Number copy(BN_dup(number));
    if (!copy) throw std::runtime_error("the key has no such number");
    return copy;
}
#endif

Number Cube(const BIGNUM& number, BN_CTX* scratch) {
    Number cube(BN_new());
    Check(BN_sqr(cube.get(), &number, scratch), "cannot square");
    Check(BN_mul(cube.get(), cube.get(), &number, scratch), "cannot multiply");
    return cube;
}

}  // namespace

std::string Encrypted(const std::string& key, const std::string& block) {
    const KeyHandle privateKey = Read(key);
    const Scratch scratch(BN_CTX_new());
    const Number modulus = Parameter(*privateKey, "n");
    const Number number = FromBytes(block);
    if (BN_cmp(number.get(), modulus.get()) >= 0)
        throw std::runtime_error("the block exceeds the modulus");
    const Number result(BN_new());
    Check(BN_mod_exp(result.get(), number.get(), Parameter(*privateKey, "d").get(), modulus.get(),
                     scratch.get()),
          "cannot encrypt");
    return ToBytes(*result, block.size());
}

std::string Decrypted(const std::string& key, const std::string& signature) {
    const KeyHandle privateKey = Read(key);
    const Scratch scratch(BN_CTX_new());
    const Number modulus = Parameter(*privateKey, "n");
    const Number result(BN_new());
    Check(BN_mod_exp(result.get(), FromBytes(signature).get(), Parameter(*privateKey, "e").get(),
                     modulus.get(), scratch.get()),
          "cannot decrypt");
    return ToBytes(*result, static_cast<std::size_t>(BN_num_bytes(modulus.get())));
}

std::string Modulus(const std::string& key) {
    return ToBytes(*Parameter(*Read(key), "n"), 0);
}

std::string Sum(const std::string& left, const std::string& right) {
    const Number sum(BN_new());
    Check(BN_add(sum.get(), FromBytes(left).get(), FromBytes(right).get()), "cannot add");
    return ToBytes(*sum, left.size());
}

std::string Sum(const std::string& left, int right) {
    const std::string one(1, static_cast<char>(right < 0 ? -right : right));
    return right < 0 ? Difference(left, one) : Sum(left, one);
}

std::string Difference(const std::string& left, const std::string& right) {
    const Number difference(BN_new());
    Check(BN_sub(difference.get(), FromBytes(left).get(), FromBytes(right).get()),
          "cannot subtract");
    return ToBytes(*difference, left.size());
}

// Bit by bit from the highest: the largest number whose cube is less, and one.
std::string RoundedUpCubeRoot(const std::string& number) {
    const Scratch scratch(BN_CTX_new());
    const Number cube = FromBytes(number);
    const Number root(BN_new());
    for (int bit = BN_num_bits(cube.get()) / 3 + 1; bit >= 0; --bit) {
        Check(BN_set_bit(root.get(), bit), "cannot set a bit");
        if (BN_cmp(Cube(*root, scratch.get()).get(), cube.get()) >= 0)
            Check(BN_clear_bit(root.get(), bit), "cannot clear a bit");
    }
    Check(BN_add_word(root.get(), 1), "cannot add");
    return ToBytes(*root, number.size());
}

}  // namespace Saml::Attacks::RawRsa
