// The argument checks moved to frame/report.hpp, where every family reaches them.
#pragma once

#include "frame/report.hpp"
