#pragma once

#include "core/Base.h"
