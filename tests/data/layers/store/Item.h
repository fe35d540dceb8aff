#pragma once

#include "core/Base.h"

struct Item
{
};
