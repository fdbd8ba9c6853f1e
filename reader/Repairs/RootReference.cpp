#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// Lets `RootRef` lead to the project's root object: the last of the outermost class that the archive has.
class RootReference : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        const auto objects = objectsById(archive);
        if (objects.contains(uint64In(archive.root(), Words::RootRef)))
            return false;
        for (const char* type : {"Project::PersistentObject", "Project::Content"}) {
            m_root = archive.lastRootObject(type);
            if (!m_root.isNull())
                return true;
        }
        m_root = mainTimeline(archive);
        return !m_root.isNull();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        const QDomElement top = archive.root();
        if (top.firstChildElement(Words::RootRef).isNull()) {
            archive.fields(top).reference(Words::RootRef, wrappedIdOf(m_root));
            archive.placeBefore(top, top.lastChildElement(Words::RootRef), top.firstChildElement());
        } else {
            archive.setField(top, Words::RootRef, QString::number(Archive::objectIdOf(m_root)));
        }
        changes.note(m_root);
        changes.describe("the project's root is the " + Archive::typeOf(m_root).toStdString() + " of id " +
                         std::to_string(Archive::objectIdOf(m_root)) + " again");
    }

private:
    QDomElement m_root;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeRootReference() {
    return std::make_unique<RootReference>();
}

} // namespace Repairs
