#include "saml/security/pem_input.h"

#include "saml/foundations/checked_narrowing.h"

#include <new>

namespace Saml::Xml::Security {

BufferHandle OpenPem(std::string_view pem) {
    if (!FitsIn<int>(pem.size())) return nullptr;
    BufferHandle input(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    if (!input) throw std::bad_alloc();
    return input;
}

int RefusePassPhrase(char*, int, int, void*) noexcept {
    return -1;  // 0 would be an empty pass phrase
}

}  // namespace Saml::Xml::Security
