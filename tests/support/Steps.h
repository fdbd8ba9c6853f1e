#pragma once

#include "support/Log.h"

#include <gtest/gtest.h>

#include <QDomDocument>

namespace Tests {

/// The document after these adaptors, in their order, which are to log nothing.
template <class... Adaptors>
QDomDocument adapted(QDomDocument document) {
    const Log log;
    (Adaptors().adapt(document), ...);
    EXPECT_TRUE(log.lines().empty());
    return document;
}

} // namespace Tests
