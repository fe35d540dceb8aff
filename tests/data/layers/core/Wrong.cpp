#include "Base.h"
#include "store/Item.h"

#include <QString>
