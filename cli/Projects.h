#pragma once

#include <QString>
#include <QStringList>

/// The projects in a folder.
namespace Projects {

/// The names among a folder's that are projects': .xml and .json files that are not hidden and are no results that this
/// program wrote beside their project, such as film.v77.json beside film.xml.
QStringList projectsAmong(const QStringList& names);

/// The one project in a folder. Throws Messages::Failure for none and for several.
QString soleProjectIn(const QString& folder);

} // namespace Projects
