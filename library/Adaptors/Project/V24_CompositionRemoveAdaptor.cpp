#include "Adaptors/Project/V24_CompositionRemoveAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <QHash>

#include <glog/logging.h>

using namespace Archive::Internal;

namespace Project {
namespace {

class CompositionRemoval {
public:
    explicit CompositionRemoval(ArchiveEditor& archive) : m_archive(archive) {
        // Quirk: ids are read in 32 bits; greater ones read as 0.
        for (const auto& [object, type] : archive.rootObjects())
            m_objects[object.attribute(Words::objectId).toInt()] = object;
    }

    void removeFrom(const QDomElement& file) {
        const Subject subject(m_archive, file);
        removeComposition(int32In(file, "composition"));
        m_archive.removeField(file, "composition");
    }

private:
    void removeComposition(int id) {
        if (id == 0)
            return;
        if (!m_objects.contains(id)) {
            LOG(ERROR) << "Can not file composition object with id " << id; // Quirk: "file" instead of "find"
            return;
        }
        const QDomElement composition = m_objects.value(id);
        removeListed(childOf(composition, "markers"));
        removeListed(childOf(composition, "ranges"));
        removeObject(id);
    }

    void removeListed(const QDomElement& array) {
        Archive::iterateArray(array, [this](QDomElement& data) { removeObject(int32Of(data)); });
    }

    void removeObject(int id) {
        if (id == 0)
            return;
        // Quirk: an object that is no child of `Archive` stays in the tree, but is not found again, and its
        // record is removed.
        m_archive.removeFrom(m_archive.root(), m_objects.take(id));
        m_archive.undeclare(id); // Quirk: also if there is no such object
    }

    ArchiveEditor& m_archive;
    QHash<int, QDomElement> m_objects;
};

} // namespace

void V24_CompositionRemoveAdaptor::convert(ArchiveEditor& archive) {
    CompositionRemoval removal(archive);
    for (const QDomElement& file : archive.rootObjects("File"))
        removal.removeFrom(file);
}

} // namespace Project
