// An editor that uses the library: one step, the conversion, and a whole migration.

#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Archive/Archive.h"
#include "MTime/MTime.h"
#include "ProjectAdaptors/Version.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Util/XmlToJsonAdaptor.h"

#include <QDomDocument>

#include <cstdio>
#include <string>

namespace {

const QByteArray film = "<Archive><RootRef type='ObjectRef' value='2'/>"
                        "<RootObject type='Timeline::Clip' objectId='2'/></Archive>";

bool convertsOneObject() {
    QDomDocument document;
    document.setContent(film);
    Project::V28_ClipLabelAdaptor().adapt(document);
    QString plain = "a literal"; // an embedding project may use Qt as it likes
    QDomElement clip = Archive::findRootObject(document, 2);
    clip.appendChild(Archive::createMTime(document, plain.left(1), MTime::fromMs(40)));
    const auto json = Util::XmlToJsonAdaptor().adapt(document);
    return json["data"]["labels"].empty() && json["data"]["a"] == 40;
}

bool migrates() {
    Reader::MigrationOptions options;
    options.name = "film.xml";
    Reader::Migration migration(Reader::parse(film, options.name, 27), options);
    migration.run();
    const QByteArray saved = migration.save();
    return nlohmann::json::parse(saved.begin(), saved.end())["schemaVersion"] == Reader::currentVersion;
}

/// A step of the editor's own, which needs the base class with its type information.
class OwnStep : public Bundle::XmlStep {
    void convert(Archive::Internal::ArchiveEditor&) override {}
};

bool derives() {
    OwnStep step;
    Bundle::AbstractAdaptorXml* base = &step;
    return dynamic_cast<Bundle::XmlStep*>(base) != nullptr;
}

/// Exceptions of the library reach its users with their class.
bool catchesErrors() {
    try {
        Reader::parse("neither XML nor JSON", "film.xml");
    } catch (const Reader::Error&) {
        return true;
    } catch (...) {
    }
    return false;
}

bool check(const char* what, bool holds) {
    if (!holds)
        std::printf("%s: fails\n", what);
    return holds;
}

} // namespace

int main() {
    const bool works =
        check("conversion", convertsOneObject()) & check("migration", migrates()) &
        check("own step", derives()) & check("errors", catchesErrors()) &
        check("table", !Reader::adaptorTable().empty()) &
        check("version", std::string(PROJECT_ADAPTORS_VERSION)
                             .starts_with(std::to_string(PROJECT_ADAPTORS_VERSION_MAJOR) + "."));
    std::puts(works ? "embedding works" : "embedding fails");
    return works ? 0 : 1;
}
