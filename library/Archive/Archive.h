#pragma once

// Functions on both document forms. A step on XML archives can include Archive/Xml.h alone, which needs no
// JSON.
#include "Archive/Json.h"
#include "Archive/Xml.h"
