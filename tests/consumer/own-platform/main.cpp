// The library uses the editor's own services: each of them leaves a trace here that the default ones would not.

#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Archive/Archive.h"
#include "FS/FS.h"
#include "Reader/Document.h"
#include "Reader/Migration.h"

#include <cstdio>

namespace {

bool check(const char* what, bool holds) {
    if (!holds)
        std::printf("%s: fails\n", what);
    return holds;
}

/// This editor counts time in ticks of a quarter of a millisecond.
bool usesTimes() {
    QDomDocument document;
    const MTime time = Archive::extractValue(QStringLiteral("40"), MTime());
    const QDomElement element = Archive::createMTime(document, "start", MTime(40));
    return time.ticks() == 160 && element.attribute("value") == "40";
}

/// This editor finds its folder of packages itself.
bool usesPathsAndSettings() {
    Serialize::Json::FlatObject document;
    nlohmann::json& media = *document.createObject("Import::Object");
    media["resourcePath"] = "/editor/packages/film.mov";
    FS::calls = 0;
    Project::PortableSaveAdaptor("/home/film.json").adapt(document);
    return FS::calls > 0 && media["resourcePath"] == "#PACKAGES_ROOT#/film.mov";
}

bool usesObjects() {
    Serialize::Json::FlatObject document;
    Serialize::Json::FlatObject::made = 0;
    const nlohmann::json reference = Archive::createRef(document, Stored::V14::Transform());
    return Serialize::Json::FlatObject::made == 1 && Serialize::Json::getReferenceObjectId(reference) == 1;
}

/// Steps on XML and on JSON: the first add a table of resources, the last say which version it is.
bool migrates() {
    Reader::Migration migration(Reader::parse("<Archive><RootRef type='ObjectRef' value='2'/>"
                                              "<RootObject type='Timeline::Object' objectId='2'/></Archive>",
                                              "film.xml", 27),
                                {});
    migration.run();
    const QByteArray result = migration.save();
    return result.contains("ResourceTable::Object") && result.contains("\"schemaVersion\":77");
}

} // namespace

int main() {
    const bool works = check("times", usesTimes()) & check("paths and settings", usesPathsAndSettings()) &
                       check("objects", usesObjects()) & check("migration", migrates());
    std::puts(works ? "own services work" : "own services fail");
    return works ? 0 : 1;
}
