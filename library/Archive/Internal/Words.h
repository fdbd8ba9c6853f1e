#pragma once

// Constants for names in XML archives. Use them instead of literals.

#include <QString>

/// The names of elements and attributes that occur in every archive.
namespace Archive::Words {

inline const QString Archive = QStringLiteral("Archive");
inline const QString RootRef = QStringLiteral("RootRef");
inline const QString RootObject = QStringLiteral("RootObject");
inline const QString BaseOfObject = QStringLiteral("BaseOfObject");
inline const QString Item = QStringLiteral("Item");
inline const QString Data = QStringLiteral("Data");
inline const QString Key = QStringLiteral("Key");
inline const QString Value = QStringLiteral("Value");
inline const QString First = QStringLiteral("First");
inline const QString Second = QStringLiteral("Second");

inline const QString type = QStringLiteral("type");
inline const QString objectId = QStringLiteral("objectId");
inline const QString value = QStringLiteral("value");
inline const QString ref = QStringLiteral("ref");
inline const QString size = QStringLiteral("size");
inline const QString index = QStringLiteral("index");
inline const QString binaryData = QStringLiteral("binaryData");

inline const QString Predeclarator = QStringLiteral("Predeclarator");
inline const QString Predeclare = QStringLiteral("Predeclare");
inline const QString predeclarations = QStringLiteral("predeclarations");
inline const QString typeName = QStringLiteral("typeName");
inline const QString oid = QStringLiteral("oid");
inline const QString poid = QStringLiteral("poid");
inline const QString refs = QStringLiteral("refs");

inline const QString Array = QStringLiteral("Array");
inline const QString ObjectRef = QStringLiteral("ObjectRef");
inline const QString StringPtr = QStringLiteral("StringPtr");
inline const QString ClipTiming = QStringLiteral("Timeline::ClipTiming");

} // namespace Archive::Words

namespace Archive::Internal {
namespace Words = Archive::Words;
}
