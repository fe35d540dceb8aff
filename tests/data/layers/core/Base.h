#pragma once

struct Base
{
};
