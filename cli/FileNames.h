#pragma once

#include "Report/FileNames.h"

namespace FileNames = Reader::FileNames;
