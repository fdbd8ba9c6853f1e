#include "Sha256.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

namespace {

// The texts and hashes are those of the standard, FIPS 180-4.
TEST(Sha256, GivesTheHashesOfTheStandard) {
    EXPECT_EQ(sha256("").toHex(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256("abc").toHex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq").toHex(),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(sha256(QByteArray(1000000, 'a')).toHex(),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, AgreesWithQtForEveryLengthOfABlock) {
    QByteArray bytes;
    for (int length = 0; length < 300; ++length) {
        EXPECT_EQ(sha256(bytes), QCryptographicHash::hash(bytes, QCryptographicHash::Sha256)) << length;
        bytes.append(static_cast<char>(length * 37));
    }
}

} // namespace
