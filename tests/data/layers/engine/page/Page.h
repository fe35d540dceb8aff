#pragma once

#include "engine/Engine.h"

struct Page
{
};
