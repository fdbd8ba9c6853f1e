#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// Puts a project content above the main timeline. Without one, version 57 makes a new root that refers to nothing.
class ProjectContent : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        m_timeline = mainTimeline(archive);
        return archive.lastRootObject("Project::Content").isNull() && !m_timeline.isNull();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        QDomElement collection = archive.lastRootObject("EditorCollection::UserObject");
        if (collection.isNull()) {
            const char* type = "EditorCollection::UserObject";
            collection = archive.appendRootObject(type, archive.declare(type));
            archive.fields(collection).array("items");
        }
        const long long id = archive.declare("Project::Content");
        const QDomElement content = archive.appendRootObject("Project::Content", id);
        archive.fields(content)
            .reference("timeline", wrappedIdOf(m_timeline))
            .reference("userCollection", wrappedIdOf(collection));
        archive.setField(archive.root(), Words::RootRef, id);
        changes.note(content);
        changes.mention(m_timeline);
        changes.describe("a new project content leads to the timeline of id " +
                         std::to_string(Archive::objectIdOf(m_timeline)));
    }

private:
    QDomElement m_timeline;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeProjectContent() {
    return std::make_unique<ProjectContent>();
}

} // namespace Repairs
