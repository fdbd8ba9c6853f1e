#pragma once

// The toolkit of both document forms. XML steps include Archive/Xml.h alone, which needs no JSON.
#include "Archive/Json.h"
#include "Archive/Xml.h"
