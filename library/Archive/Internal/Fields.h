#pragma once

#include "MTime/MTime.h"
#include "Stored/V14/Transform.h"
#include "Stored/V57/ResourceType.h"

#include <QDomElement>
#include <QString>

namespace Archive::Internal {

class ArchiveEditor;

/// Creates fields of one object, in the order of the calls:
///
///     archive.fields(track).int32("type", 1).boolean("used", used).reference("timeline", id);
///
/// Nothing is created for a null object. ArchiveEditor creates the builder and must outlive it.
class Fields {
public:
    Fields& boolean(const QString& name, bool value);
    Fields& int32(const QString& name, int value);
    Fields& uint32(const QString& name, unsigned int value);
    Fields& int64(const QString& name, long long value);
    Fields& uint64(const QString& name, unsigned long long value);
    Fields& time(const QString& name, MTime value);

    /// A double. Its `value` has six significant digits.
    Fields& number(const QString& name, double value);
    /// A double of a matrix. Its `value` has four decimals.
    Fields& decimal(const QString& name, double value);

    Fields& string(const QString& name, const QString& text);
    /// A "StringPtr", the nullable text of documents before version 44. It is not null.
    Fields& stringPtr(const QString& name, const QString& text);
    Fields& imageRef(const QString& name, const QString& ref);
    /// A reference to an object, 0 for none.
    Fields& reference(const QString& name, long long id);
    Fields& reference(const QString& name, const QString& idText);
    /// A field of any type with that text as `value`.
    Fields& typed(const QString& name, const QString& type, const QString& value);

    /// An array without entries.
    Fields& array(const QString& name);
    Fields& resourceId(const QString& name, const QString& id, Stored::V57::ResourceType type);
    /// An embedded "Types::Transform".
    Fields& transform(const QString& name, const Stored::V14::Transform& matrix, long long id);

    /// A field that was created elsewhere.
    Fields& add(const QDomElement& field);

    /// The field that was created last.
    const QDomElement& last() const { return m_last; }

private:
    friend class ArchiveEditor;

    enum class Place {
        End,      ///< after all fields
        SameName, ///< replaces the field of that name; if there is none, as End
        Instead,  ///< the first field replaces `m_old`
        Behind,   ///< after `m_last`; if that is null, at the end
    };

    Fields(ArchiveEditor& archive, const QDomElement& object, Place place, const QDomElement& other = {})
        : m_archive(archive), m_object(object), m_place(place),
          m_old(place == Place::Instead ? other : QDomElement()),
          m_last(place == Place::Behind ? other : QDomElement()) {}

    ArchiveEditor& m_archive;
    QDomElement m_object;
    Place m_place;
    QDomElement m_old;
    QDomElement m_last;
};

} // namespace Archive::Internal
