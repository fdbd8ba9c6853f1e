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
/// Nothing is created for a null object. A builder is made by ArchiveEditor and must not outlive it.
class Fields {
public:
    Fields& boolean(const QString& name, bool value);
    Fields& int32(const QString& name, int value);
    Fields& uint32(const QString& name, unsigned int value);
    Fields& int64(const QString& name, long long value);
    Fields& uint64(const QString& name, unsigned long long value);
    Fields& time(const QString& name, MTime value);

    /// A double, whose readable `value` has six significant digits.
    Fields& number(const QString& name, double value);
    /// A double, whose readable `value` has four decimals, as those of matrices.
    Fields& decimal(const QString& name, double value);

    Fields& string(const QString& name, const QString& text);
    /// A "StringPtr" that holds a text: the nullable text of documents before version 44.
    Fields& stringPtr(const QString& name, const QString& text);
    Fields& imageRef(const QString& name, const QString& ref);
    /// A reference to an object, 0 for none.
    Fields& reference(const QString& name, long long id);
    Fields& reference(const QString& name, const QString& idText);
    /// A field of any type, whose `value` is that text.
    Fields& typed(const QString& name, const QString& type, const QString& value);

    /// An array without entries.
    Fields& array(const QString& name);
    Fields& resourceId(const QString& name, const QString& id, Stored::V57::ResourceType type);
    /// An embedded "Types::Transform".
    Fields& transform(const QString& name, const Stored::V14::Transform& matrix, long long id);

    /// A field that was built apart.
    Fields& add(const QDomElement& field);

    /// The field that was created last.
    const QDomElement& last() const { return m_last; }

private:
    friend class ArchiveEditor;

    enum class Place {
        End,      ///< behind all fields
        SameName, ///< in the place of the field of that name, where there is one, else behind all fields
        Instead,  ///< the first one in the place of `m_old`
        Behind,   ///< behind `m_last`, at the end where that is null
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
