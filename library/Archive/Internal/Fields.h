#pragma once

#include "Archive/Internal/FieldName.h"
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
    Fields& boolean(const FieldName& name, bool value);
    Fields& int32(const FieldName& name, int value);
    Fields& uint32(const FieldName& name, unsigned int value);
    Fields& int64(const FieldName& name, long long value);
    Fields& uint64(const FieldName& name, unsigned long long value);
    Fields& time(const FieldName& name, MTime value);

    /// A double, whose readable `value` has six significant digits.
    Fields& number(const FieldName& name, double value);
    /// A double, whose readable `value` has four decimals, as those of matrices.
    Fields& decimal(const FieldName& name, double value);

    Fields& string(const FieldName& name, const QString& text);
    /// A "StringPtr" that holds a text: the nullable text of documents before version 44.
    Fields& stringPtr(const FieldName& name, const QString& text);
    Fields& imageRef(const FieldName& name, const QString& ref);
    /// A reference to an object, 0 for none.
    Fields& reference(const FieldName& name, long long id);
    Fields& reference(const FieldName& name, const QString& idText);
    /// A field of any type, whose `value` is that text.
    Fields& typed(const FieldName& name, const QString& type, const QString& value);

    /// An array without entries.
    Fields& array(const FieldName& name);
    Fields& resourceId(const FieldName& name, const QString& id, Stored::V57::ResourceType type);
    /// An embedded "Types::Transform".
    Fields& transform(const FieldName& name, const Stored::V14::Transform& matrix, long long id);

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

    const QString& textOf(const FieldName& name) const;

    ArchiveEditor& m_archive;
    QDomElement m_object;
    Place m_place;
    QDomElement m_old;
    QDomElement m_last;
};

} // namespace Archive::Internal
