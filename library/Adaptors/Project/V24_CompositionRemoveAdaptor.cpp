#include "Adaptors/Project/V24_CompositionRemoveAdaptor.h"

#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <glog/logging.h>

namespace Words = Archive::Words;

namespace Project {
namespace {

class Impl {
public:
    explicit Impl(const QDomElement& archive) : m_archive(archive) {}

    void collect();
    void convert();

private:
    void removeComposition(int id);
    void removeListed(const QDomElement& array);
    void removeObject(int id);

    QDomElement m_archive;
    QDomElement m_predeclarations;
    QHash<int, QDomElement> m_objects;
    Archive::Internal::Elements m_files;
    QSet<long long> m_removedIds;
};

void Impl::collect() {
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        m_objects[object.attribute(Words::objectId).toInt()] = object;
        if (type == Words::Predeclarator)
            m_predeclarations = object.firstChildElement(Words::predeclarations);
        else if (type == QLatin1String("File"))
            m_files.push_back(object);
    }
}

void Impl::convert() {
    const QString composition = QStringLiteral("composition");
    for (QDomElement& file : m_files) {
        removeComposition(Archive::valueOf(file, composition).toInt());
        Archive::removeFirstChild(file, composition);
    }
    Archive::Internal::removePredeclares(m_predeclarations, m_removedIds);
}

void Impl::removeComposition(int id) {
    if (id == 0)
        return;
    if (!m_objects.contains(id)) {
        LOG(ERROR) << "Can not file composition object with id " << id; // the line has always read so
        return;
    }
    const QDomElement composition = m_objects.value(id);
    removeListed(composition.firstChildElement(QStringLiteral("markers")));
    removeListed(composition.firstChildElement(QStringLiteral("ranges")));
    removeObject(id);
}

void Impl::removeListed(const QDomElement& array) {
    Archive::iterateArray(array,
                          [this](QDomElement& data) { removeObject(data.attribute(Words::value).toInt()); });
}

void Impl::removeObject(int id) {
    if (id == 0)
        return;
    // An object that is no child of `Archive` stays in the tree, while its id and its record go.
    Archive::Internal::removeChild(m_archive, m_objects.take(id));
    // The record goes even where there is no such object.
    m_removedIds.insert(id);
}

} // namespace

void V24_CompositionRemoveAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Impl impl(archive);
    impl.collect();
    impl.convert();
}

} // namespace Project
