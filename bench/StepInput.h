#pragma once

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"

#include <QByteArray>

namespace Bench {

/// The document of a migration of that archive before that step.
Reader::Document documentBefore(const Reader::AdaptorRow& step, const QByteArray& text);

} // namespace Bench
