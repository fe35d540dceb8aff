#pragma once

#include "page/Page.h"
#include "core/Base.h"

struct Engine
{
};
