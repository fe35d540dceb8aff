#include "engine/Engine.h"
#include "store/Item.h"
// #include "app/Main.h" stays a comment

#include <QWidget>
