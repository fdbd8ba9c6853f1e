#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <span>
#include <string_view>

namespace Reader {

/// What an unnumbered adaptor may need to know of the document's surroundings.
struct Surroundings {
    QString location;                                            ///< path of the project file
    std::function<QByteArray(const QString& name)> readSideFile; ///< empty for none
    std::function<bool(const QString& name, const QByteArray& content)> writeSideFile; ///< false if it can't
};

/// An adaptor that stands outside the chain of versions.
struct Unnumbered {
    std::string_view className; ///< without its namespace
    std::string_view summary;   ///< one sentence for people
    /// Make the adaptor in that form; null where it has no such form.
    std::unique_ptr<Bundle::AbstractAdaptorXml> (*makeXml)(const Surroundings&);
    std::unique_ptr<Bundle::AbstractAdaptorJson> (*makeJson)(const Surroundings&);
};

/// All unnumbered adaptors, by class name.
std::span<const Unnumbered> unnumberedAdaptors();

/// The adaptor of that class name, with or without "Project::"; null for none.
const Unnumbered* findUnnumbered(std::string_view className);

} // namespace Reader
