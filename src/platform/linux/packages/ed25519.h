// Signatures by Ed25519, over OpenSSL's libcrypto. Keys and signatures are in Base64.
#pragma once

#include <string>
#include <string_view>

namespace ovrin {

// Whether the signature of all the bytes was made by the owner of the public key. Throws Error when the key or the
// signature is no such thing. Any thread.
bool isSignedByEd25519(std::string_view bytes, const std::string& signature, const std::string& publicKey);

}  // namespace ovrin
