#pragma once

#include "Archive/Xml.h"

#include <QDomDocument>

namespace Tests {

/// Builds an archive object by object, for tests with thousands of objects. Starts with a Predeclarator of
/// the id 1.
struct ArchiveBuilder {
    QDomDocument document;
    QDomElement archive;
    QDomElement predeclarations;
    long long greatestRecordId = 1'000'000'000; // above the ids of all objects

    ArchiveBuilder() {
        archive = document.createElement("Archive");
        document.appendChild(archive);
        predeclarations = Archive::createArray(document, "predeclarations", 0);
        add("Predeclarator", 1).appendChild(predeclarations);
    }

    QDomElement add(const QString& type, long long id) {
        QDomElement object = Archive::createObject(document, "RootObject", type, id);
        archive.appendChild(object);
        return object;
    }

    QDomElement addDeclared(const QString& type, long long id) {
        declare(type, id);
        return add(type, id);
    }

    void declare(const QString& type, long long id, long long parent = 0) {
        Archive::addPredeclaration(predeclarations, document, type, parent, greatestRecordId, id, {});
    }
};

} // namespace Tests
