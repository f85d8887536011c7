#include "./d.h"
