#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "platform/lisp/external_functions.h"
#include "support/byte_list_text.h"
#include "support/lisp_functions.h"
#include "support/signatures.h"

namespace sg {

int signString() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring text, privateKey;
    if (!nextString(at, text)) return kLispOk;
    // The key is read byte per character, deliberately not as the list of numbers that the result
    // has: "sPrivateKey" of a result does not import.
    nextString(at, privateKey);
    const std::optional<SignedBytes> made = signBytes(clippedBytes(text), clippedBytes(privateKey));
    if (!made) return kLispOk;
    resbuf *head = nullptr, *tail = nullptr;
    beginResultList(head, tail);
    appendPair(tail, L"sPublicKey", byteListText(made->publicKey));
    appendPair(tail, L"sPrivateKey", byteListText(made->privateKey));
    appendPair(tail, L"sSign", byteListText(made->signature));
    finishResultList(head, tail);
    return kLispOk;
}

int verifyString() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring text, publicKey, signature;
    acedRetNil();
    if (!nextString(at, text) || !nextString(at, publicKey) || !nextString(at, signature)) {
        return kLispOk;
    }
    const auto key = parseByteListText(publicKey);
    const auto bytes = parseByteListText(signature);
    if (key && bytes && verifyBytes(clippedBytes(text), *key, *bytes)) acedRetT();
    return kLispOk;
}

}  // namespace sg
