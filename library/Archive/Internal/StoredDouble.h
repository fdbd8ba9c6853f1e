#pragma once

#include "Archive/Internal/Reading.h"
