#pragma once

#include <QByteArray>

/// The 32 bytes of the SHA-256 of these bytes.
///
/// Threads: thread-safe.
QByteArray sha256(const QByteArray& bytes);
