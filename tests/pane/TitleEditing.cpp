// SPDX-License-Identifier: MIT
#include "TitleTest.h"
