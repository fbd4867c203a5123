#include "../ConfigWriter.h"
