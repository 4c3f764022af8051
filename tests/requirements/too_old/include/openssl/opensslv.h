/* An OpenSSL that is out of support, as far as CMake reads it. */
#define OPENSSL_VERSION_NUMBER 0x1000212fL
